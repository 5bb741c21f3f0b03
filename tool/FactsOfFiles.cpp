#include "tool/FactsOfFiles.h"

#include "tool/Command.h"
#include "tool/CommonOptions.h"
#include "tool/Recording.h"
#include "tool/StandardOutput.h"
#include "tool/Words.h"

#include <algorithm>
#include <optional>

namespace kvsig::tool {

void addFactsOptions(CLI::App& command, FactsOptions& options) {
    addFilesArgument(command, options.files);
    addTypeOption(command, options.type);
    command.add_flag("--json", options.json, "Write JSON, for programs");
    addQuietFlag(command, options.quiet);
}

int printFacts(const FactsOptions& options,
               const std::function<FileFacts(const std::string& file, int type)>& factsOf) {
    setQuiet(options.quiet);
    const std::optional<int> type = typeFromName(options.type);
    if (!type)
        return exitWrongUsage;
    int exitCode = exitWell;
    Json list = Json::array();
    for (const std::string& file : options.files) {
        (void)takeComplaint(); // of the file before
        FileFacts facts = factsOf(file, *type);
        if (facts.json.is_null() && facts.exitCode != exitWell)
            facts.json = {{"file", toUtf8(file)}, {"error", toUtf8(takeComplaint())}};
        exitCode = std::max(exitCode, facts.exitCode);
        if (!options.json)
            print(facts.text);
        else if (!facts.json.is_null())
            list.push_back(std::move(facts.json));
    }
    if (options.json && !list.empty())
        print((options.files.size() == 1 ? list.front() : list).dump(2) + "\n");
    return finishPrinting() ? exitCode : exitFailed;
}

} // namespace kvsig::tool
