#include "kvsig/registry/Allocation.h"
#include "kvsig/registry/FrontDoor.h"
#include "tool/Command.h"
#include "tool/Recording.h"
#include "tool/StandardOutput.h"
#include "tool/Words.h"
#include "tool/check/ChannelOddities.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace kvsig::tool {
namespace {

using Json = nlohmann::ordered_json;
using Severity = OpenFinding::Severity;

struct CheckOptions {
    std::vector<std::string> files;
    std::string type;
    bool json = false;
};

struct Report {
    bool opens = false;
    std::vector<OpenFinding> findings;

    void add(const std::vector<OpenFinding>& more) {
        findings.insert(findings.end(), more.begin(), more.end());
    }
    [[nodiscard]] bool isUsable() const {
        return std::none_of(findings.begin(), findings.end(), [](const OpenFinding& finding) {
            return finding.severity == Severity::unusable;
        });
    }
};

const char* wordFor(Severity severity) {
    switch (severity) {
    case Severity::note:
        return "note";
    case Severity::warning:
        return "warning";
    default:
        return "unusable";
    }
}

// A file that does not open is looked at by a reader that was never opened.
std::vector<OpenFinding> inspectUnopened(const std::string& file, int type) {
    const int found = type != noReaderType ? type : DetectFileType(file.c_str());
    const UnheldReader reader(_KrnlAllocReaderEx(found, file.c_str()));
    auto* single = dynamic_cast<DataReader*>(reader.get());
    return single ? single->inspectFile() : std::vector<OpenFinding>();
}

Report check(const std::string& file, int type) {
    Report report;
    std::string error;
    const Recording recording{file, openReader(file.c_str(), type, &error)};
    if (!recording.reader) {
        const std::string prefix = file + ": ";
        report.findings.push_back(
            {Severity::unusable, error.starts_with(prefix) ? error.substr(prefix.size()) : error});
        report.add(inspectUnopened(file, type));
        return report;
    }
    report.opens = true;
    for (DataReader* member : recording.members()) {
        report.add(member->openFindings());
        report.add(member->inspectFile());
    }
    report.add(channelOddities(recording));
    return report;
}

Json toJson(const std::string& file, const Report& report) {
    Json findings = Json::array();
    for (const OpenFinding& finding : report.findings)
        findings.push_back(
            {{"severity", wordFor(finding.severity)}, {"text", toUtf8(finding.text)}});
    return {{"file", toUtf8(file)}, {"opens", report.opens}, {"findings", findings}};
}

int run(const CheckOptions& options) {
    const std::optional<int> type = typeFromName(options.type);
    if (!type)
        return exitWrongUsage;
    int exitCode = exitWell;
    Json list = Json::array();
    for (const std::string& file : options.files) {
        const Report report = check(file, *type);
        if (!report.opens || !report.isUsable())
            exitCode = exitFailed;
        if (options.json)
            list.push_back(toJson(file, report));
        else
            for (const OpenFinding& finding : report.findings)
                print(printable(file) + ": " + wordFor(finding.severity) + ": " +
                      printable(finding.text) + "\n");
    }
    if (options.json)
        print((options.files.size() == 1 ? list.front() : list).dump(2) + "\n");
    return finishPrinting() ? exitCode : exitFailed;
}

} // namespace

void addCheckCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* command =
        app.add_subcommand("check", "List what is odd about recordings, one line each");
    command->add_option("FILE", options->files, "Recordings")->required();
    command->add_option("--type", options->type, "Type name that overrules detection");
    command->add_flag("--json", options->json, "Machine-readable output");
    command->callback([options, &exitCode] { exitCode = run(*options); });
}

} // namespace kvsig::tool
