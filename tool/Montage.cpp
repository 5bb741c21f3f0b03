#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/DataSource.h"
#include "tool/Command.h"
#include "tool/FactsOfFiles.h"
#include "tool/MontageChoice.h"
#include "tool/RowFaults.h"
#include "tool/Table.h"
#include "tool/Words.h"

#include <memory>

namespace kvsig::tool {
namespace {

struct MontageOptions {
    FactsOptions files;
    MontageChoice choice;
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
        if (AvgSource* average = montage.avgRef(i))
            facts["averages"].push_back(sourceFacts(*average));
    facts["missing"] = Json::array();
    for (const std::string& definition : montage.unresolved())
        facts["missing"].push_back(toUtf8(definition));
    return facts;
}

std::string text(const Json& facts) {
    std::string out = "montage " + facts["name"].get<std::string>();
    const std::string reference = facts["reference"];
    out += !facts["referential"].get<bool>() ? ", no reference in common"
           : reference.empty()               ? ", against a common reference without a name"
                                             : ", against " + reference;
    std::vector<std::vector<std::string>> rows{{"#", "name", "definition"}};
    int index = 0;
    for (const Json& source : facts["sources"])
        rows.push_back({std::to_string(index++), source["name"], source["definition"]});
    for (const Json& average : facts["averages"])
        rows.push_back({"", average["name"], average["definition"]});
    return printable(out) + "\n" + tableText(std::move(rows), {true, false, false});
}

FileFacts listOf(const Recording& recording, const MontageChoice& choice) {
    if (!useMontageFile(choice.file, recording.path))
        return {nullptr, "", exitFailed};
    FileFacts facts{{{"file", toUtf8(recording.path)}, {"montages", Json::array()}},
                    printable(recording.path) + "\n",
                    exitWell};
    for (const std::string& name : montageNames(*recording.reader)) {
        facts.json["montages"].push_back(toUtf8(name));
        facts.text += "  " + printable(name) + "\n";
    }
    facts.text += "\n";
    return facts;
}

// A montage lists what it holds; what of it cannot be shown is said beside.
void remarkOnFaults(SourceMontage& montage, const Recording& recording) {
    const ChannelNames names(*recording.reader);
    for (int i = 0; i < montage.sourceCount(); ++i) {
        const auto* row = dynamic_cast<const G1G2Source*>(montage.source(i));
        if (!row || row->isGap())
            continue;
        const std::vector<int> channels = channelsOfRow(montage, *recording.reader, *row);
        if (const std::string fault = rowFault(recording, names, channels); !fault.empty())
            remark(recording.path + ": " + rowLabel(*montage.source(i)) +
                   " is left out of exports and pictures: " + fault);
    }
}

// Facts of the montage, or the list of the montages there are.
FileFacts factsOf(const std::string& file, int type, const MontageChoice& choice) {
    const std::optional<Recording> recording = openUsableRecording(file, type);
    if (!recording)
        return {nullptr, "", exitFailed};
    if (!choice.isMade())
        return listOf(*recording, choice);
    SourceMontage montage;
    if (!fillMontage(montage, *recording, choice))
        return {nullptr, "", exitFailed};
    remarkOnFaults(montage, *recording);
    const Json facts = montageFacts(montage);
    return {{{"file", toUtf8(file)}, {"montage", facts}},
            printable(file) + "\n" + text(facts) + "\n",
            exitWell};
}

} // namespace

void addMontageCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<MontageOptions>();
    CLI::App* command =
        app.add_subcommand("montage", "List the montages of recordings, or the rows of one");
    command->footer("Examples:\n"
                    "  kvsig montage night.edf\n"
                    "  kvsig montage night.edf --montage Average --reference Cz");
    addFactsOptions(*command, options->files);
    addMontageOptions(*command, options->choice);
    command->callback([options, &exitCode] {
        exitCode = printFacts(options->files, [&options](const std::string& file, int type) {
            return factsOf(file, type, options->choice);
        });
    });
}

} // namespace kvsig::tool
