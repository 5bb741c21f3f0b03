#include "kvsig/registry/Allocation.h"
#include "kvsig/registry/FrontDoor.h"
#include "kvsig/util/File.h"
#include "tool/Command.h"
#include "tool/EventList.h"
#include "tool/FactsOfFiles.h"
#include "tool/Recording.h"
#include "tool/Words.h"
#include "tool/check/AnchorOddities.h"
#include "tool/check/ChannelOddities.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace kvsig::tool {
namespace {

using Severity = OpenFinding::Severity;

struct Report {
    bool opens = false;
    std::vector<OpenFinding> findings;

    void add(const std::vector<OpenFinding>& more, const std::string& prefix = {}) {
        for (const OpenFinding& finding : more)
            findings.push_back({finding.severity, prefix + finding.text});
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

// Of a sentence that begins with the file that it is about, the rest.
std::string withoutPath(const std::string& text, const std::string& path) {
    return text.starts_with(path + ": ") ? text.substr(path.size() + 2) : text;
}

struct Member {
    std::string file;
    int type;
};

// The two files of what is named as a pair, whether or not they make one.
std::vector<Member> membersOf(const std::string& file, int type) {
    const std::size_t star = file.find('*');
    if (star == std::string::npos ||
        (type == noReaderType ? File().open(file.c_str()) : !isPairType(type)))
        return {};
    const bool typed = type != noReaderType;
    return {{file.substr(0, star), typed ? firstOfPair(type) : noReaderType},
            {file.substr(star + 1), typed ? secondOfPair(type) : noReaderType}};
}

// A file that does not open is looked at by a reader that was never opened.
std::vector<OpenFinding> inspectUnopened(const std::string& file, int type) {
    const int found = type != noReaderType ? type : DetectFileType(file.c_str());
    const UnheldReader reader(_KrnlAllocReaderEx(found, file.c_str()));
    auto* single = dynamic_cast<DataReader*>(reader.get());
    if (!single)
        return {};
    std::vector<OpenFinding> findings;
    for (const Warning& warning : warningsOfRefusal(file, type))
        findings.push_back({Severity::warning, warning.text});
    const std::vector<OpenFinding> ofBytes = single->inspectFile();
    findings.insert(findings.end(), ofBytes.begin(), ofBytes.end());
    return findings;
}

Report checkOpened(const Recording& recording) {
    Report report;
    report.opens = true;
    for (DataReader* member : recording.members()) {
        const std::string prefix = recording.isPair() ? member->filePath() + ": " : "";
        report.add(member->openFindings(), prefix);
        report.add(member->inspectFile(), prefix);
        report.add(anchorOddities(*member), prefix);
        for (const std::string& lost : lostEventsOf(*member))
            report.findings.push_back(
                {Severity::warning,
                 recording.isPair() ? lost : withoutPath(lost, member->filePath())});
        report.add(channelOddities(recording, member), prefix);
    }
    report.add(twinOddities(recording));
    return report;
}

Report check(const std::string& file, int type) {
    std::string error;
    const Recording recording{file, openReader(file.c_str(), type, &error)};
    if (recording.reader)
        return checkOpened(recording);
    Report report;
    const std::vector<Member> members = membersOf(file, type);
    if (members.empty())
        report.add(inspectUnopened(file, type));
    for (const Member& member : members)
        report.add(check(member.file, member.type).findings, member.file + ": ");
    const std::string reason = withoutPath(error, file);
    // The member that keeps a pair from opening has told its reason already.
    if (std::none_of(report.findings.begin(), report.findings.end(),
                     [&reason](const OpenFinding& told) { return told.text == reason; }))
        report.findings.insert(report.findings.begin(), {Severity::unusable, reason});
    return report;
}

Json toJson(const std::string& file, const Report& report) {
    Json findings = Json::array();
    for (const OpenFinding& finding : report.findings)
        findings.push_back(
            {{"severity", wordFor(finding.severity)}, {"text", toUtf8(finding.text)}});
    return {{"file", toUtf8(file)}, {"opens", report.opens}, {"findings", findings}};
}

FileFacts factsOf(const std::string& file, int type) {
    const Report report = check(file, type);
    FileFacts facts{toJson(file, report), "", exitWell};
    for (const OpenFinding& finding : report.findings)
        facts.text += printable(file) + ": " + wordFor(finding.severity) + ": " +
                      printable(finding.text) + "\n";
    if (!report.opens || !report.isUsable())
        facts.exitCode = exitFailed;
    return facts;
}

} // namespace

void addCheckCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<FactsOptions>();
    CLI::App* command =
        app.add_subcommand("check", "List what is odd about recordings, one line each");
    command->footer("Example:\n  kvsig check *.edf");
    addFactsOptions(*command, *options);
    command->callback([options, &exitCode] { exitCode = printFacts(*options, factsOf); });
}

} // namespace kvsig::tool
