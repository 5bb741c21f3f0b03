#include "tool/CommandLine.h"

#include "kvsig/util/Version.h"
#include "tool/Command.h"
#include "tool/HelpPage.h"

#include <memory>
#include <string>

namespace kvsig::tool {
namespace {

constexpr const char* footer =
    R"(A first look:
  kvsig synth -o night.edf
  kvsig info night.edf
  kvsig plot night.edf -o page.png --montage "Double banana" --to 10 --notch 60

'kvsig COMMAND --help' tells the options of a command, 'man kvsig' tells all.
Results go to standard output, messages to standard error. Exit code: 0 all well,
1 some file failed (the others were still done), 2 wrong usage.)";

std::string versionText() {
    const LibraryVersion library = libraryVersion();
    return std::string("kvsig " KVSIG_VERSION "\nlibrary ") + library.release + ", ABI " +
           std::to_string(library.abi) + "\ncommit " KVSIG_COMMIT;
}

void groupCommands(CLI::App& app) {
    for (CLI::App* command : app.get_subcommands([](CLI::App*) { return true; }))
        command->group("Look");
    for (const char* name : {"export", "plot"})
        app.get_subcommand(name)->group("Take out");
    app.get_subcommand("synth")->group("Make");
}

} // namespace

void defineCommandLine(CLI::App& app, int& exitCode) {
    app.name("kvsig");
    app.description("Reads, filters and draws EEG and polygraphic recordings.");
    app.footer(footer);
    app.formatter(std::make_shared<HelpPage>());
    app.set_help_flag("-h,--help", "Show this page");
    app.set_version_flag("--version", versionText(), "Show the versions of command and library");
    app.require_subcommand(1);
    addInfoCommand(app, exitCode);
    addCheckCommand(app, exitCode);
    addEventsCommand(app, exitCode);
    addMontageCommand(app, exitCode);
    addTypesCommand(app, exitCode);
    addExportCommand(app, exitCode);
    addPlotCommand(app, exitCode);
    addSynthCommand(app, exitCode);
    groupCommands(app);
}

} // namespace kvsig::tool
