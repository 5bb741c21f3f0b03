#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/DataSource.h"
#include "tool/Command.h"
#include "tool/MontageChoice.h"
#include "tool/StandardOutput.h"
#include "tool/Table.h"
#include "tool/Words.h"

#include <memory>
#include <nlohmann/json.hpp>

namespace kvsig::tool {
namespace {

using Json = nlohmann::ordered_json;

struct MontageOptions {
    std::vector<std::string> files;
    std::string type;
    MontageChoice choice;
    bool json = false;
    bool quiet = false;
};

Json sourceFacts(DataSource& source) {
    char definition[DataSource::definitionSize];
    source.constructDefn(definition, true);
    return {{"name", rowLabel(source)},
            {"definition", toUtf8(definition)},
            {"grid1", toUtf8(source.grid1())},
            {"grid2", toUtf8(source.grid2())},
            {"gap", source.isGap()}};
}

Json montageFacts(SourceMontage& montage) {
    Json facts{{"name", toUtf8(montage.name())}};
    const bool referential = montage.isReferential();
    facts["referential"] = referential;
    facts["reference"] = referential ? toUtf8(montage.ref()) : "";
    facts["sources"] = Json::array();
    for (int i = 0; i < montage.sourceCount(); ++i)
        facts["sources"].push_back(sourceFacts(*montage.source(i)));
    facts["averages"] = Json::array();
    for (int i = 0; i < montage.avgRefCount(); ++i)
        facts["averages"].push_back(sourceFacts(*montage.avgRef(i)));
    facts["missing"] = Json::array();
    for (const std::string& definition : montage.unresolved())
        facts["missing"].push_back(toUtf8(definition));
    return facts;
}

std::string text(const Json& facts) {
    std::string out = "montage " + facts["name"].get<std::string>();
    out += facts["referential"].get<bool>() ? ", against " + facts["reference"].get<std::string>()
                                            : ", no reference in common";
    std::vector<std::vector<std::string>> rows{{"#", "name", "definition"}};
    int index = 0;
    for (const Json& source : facts["sources"])
        rows.push_back({std::to_string(index++), source["name"], source["definition"]});
    for (const Json& average : facts["averages"])
        rows.push_back({"", average["name"], average["definition"]});
    return printable(out) + "\n" + tableText(std::move(rows), {true, false, false});
}

// Facts of the montage, or the list of the montages there are.
std::optional<Json> facts(const std::string& file, int type, const MontageChoice& choice) {
    const std::optional<Recording> recording = openUsableRecording(file, type);
    if (!recording)
        return std::nullopt;
    Json all{{"file", toUtf8(file)}};
    if (!choice.isMade()) {
        if (!useMontageFile(choice.file, file))
            return std::nullopt;
        all["montages"] = Json::array();
        for (const std::string& name : montageNames(*recording->reader))
            all["montages"].push_back(toUtf8(name));
        return all;
    }
    SourceMontage montage;
    if (!fillMontage(montage, *recording, choice))
        return std::nullopt;
    all["montage"] = montageFacts(montage);
    return all;
}

void printText(const Json& all) {
    std::string out = printable(all["file"].get<std::string>()) + "\n";
    if (all.contains("montage"))
        out += text(all["montage"]);
    else
        for (const Json& name : all["montages"])
            out += "  " + printable(name.get<std::string>()) + "\n";
    print(out + "\n");
}

int run(const MontageOptions& options) {
    setQuiet(options.quiet);
    const std::optional<int> type = typeFromName(options.type);
    if (!type)
        return exitWrongUsage;
    int exitCode = exitWell;
    Json list = Json::array();
    for (const std::string& file : options.files) {
        const std::optional<Json> all = facts(file, *type, options.choice);
        if (!all)
            exitCode = exitFailed;
        else if (options.json)
            list.push_back(*all);
        else
            printText(*all);
    }
    if (options.json && !list.empty())
        print((options.files.size() == 1 ? list.front() : list).dump(2) + "\n");
    return finishPrinting() ? exitCode : exitFailed;
}

} // namespace

void addMontageCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<MontageOptions>();
    CLI::App* command =
        app.add_subcommand("montage", "List the montages of recordings, or the sources of one");
    command->add_option("FILE", options->files, "Recordings")->required();
    addMontageOptions(*command, options->choice);
    command->add_option("--type", options->type, "Type name that overrules detection");
    command->add_flag("--json", options->json, "Machine-readable output");
    command->add_flag("-q,--quiet", options->quiet, "No remarks");
    command->callback([options, &exitCode] { exitCode = run(*options); });
}

} // namespace kvsig::tool
