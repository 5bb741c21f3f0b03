#include "kvsig/registry/types/DataReaderManager.h"
#include "kvsig/registry/types/FileTypes.h"
#include "tool/Command.h"
#include "tool/StandardOutput.h"
#include "tool/Table.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

namespace kvsig::tool {
namespace {

using Json = nlohmann::ordered_json;

struct TypesOptions {
    bool json = false;
    bool readable = false;
};

Json typeList(bool readableOnly) {
    Json list = Json::array();
    const auto add = [&](int type, const char* name, const char* pattern) {
        if (KrnlIsReadable(type) || !readableOnly)
            list.push_back({{"type", type},
                            {"name", typeNameOf(type)},
                            {"fullName", name},
                            {"pattern", pattern},
                            {"readable", KrnlIsReadable(type)}});
    };
    for (const DRFactory* factory : dataReaderManager().factories())
        add(factory->type, factory->name, factory->pattern);
    // Raw data without a row of its own: a layout describes it.
    for (const ReaderType type : {interleavedType, snapshotType, pushableType})
        add(type, "", "");
    return list;
}

std::string typeTableText(const Json& list) {
    std::vector<std::vector<std::string>> rows{{"type", "name", "pattern", "read", "full name"}};
    for (const Json& type : list)
        rows.push_back({std::to_string(type["type"].get<int>()), type["name"], type["pattern"],
                        type["readable"].get<bool>() ? "yes" : "no", type["fullName"]});
    return tableText(std::move(rows), {true, false, false, false, false});
}

} // namespace

void addTypesCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<TypesOptions>();
    CLI::App* command =
        app.add_subcommand("types", "List the kinds of recordings and which of them are read");
    command->footer("Example:\n  kvsig types --readable");
    command->add_flag("--readable", options->readable, "Only those that are read");
    command->add_flag("--json", options->json, "Write JSON, for programs");
    command->callback([options, &exitCode] {
        const Json list = typeList(options->readable);
        print(options->json ? list.dump(2) + "\n" : typeTableText(list));
        exitCode = finishPrinting() ? exitWell : exitFailed;
    });
}

} // namespace kvsig::tool
