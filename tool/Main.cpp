#include "tool/Command.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>

namespace {

std::string usageFailure(const CLI::App* app, const CLI::Error& error) {
    std::string called = "kvsig";
    if (const auto chosen = app->get_subcommands(); !chosen.empty())
        called += " " + chosen.front()->get_name();
    return "kvsig: " + std::string(error.what()) + "\nSee '" + called + " --help'.\n";
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Reads, filters and draws EEG and polygraphic recordings.", "kvsig");
    int exitCode = kvsig::tool::exitWell;
    try {
        app.set_version_flag("--version", "kvsig " KVSIG_VERSION);
        app.require_subcommand(1);
        app.failure_message(usageFailure);
        kvsig::tool::addInfoCommand(app, exitCode);
        kvsig::tool::addExportCommand(app, exitCode);
        kvsig::tool::addPlotCommand(app, exitCode);
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version arrive as errors of code 0.
        return app.exit(error, std::cout, std::cerr) == 0 ? kvsig::tool::exitWell
                                                          : kvsig::tool::exitWrongUsage;
    } catch (const std::exception& error) {
        std::cerr << "kvsig: " << error.what() << '\n';
        return kvsig::tool::exitFailed;
    }
    return exitCode;
}
