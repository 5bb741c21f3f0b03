#include "kvsig/registry/types/FileTypes.h"
#include "tool/Command.h"
#include "tool/CommandLine.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

// The parser's own words miss an unknown command, and it lists what is left over backwards.
std::string reasonOf(const CLI::App& app, const CLI::Error& error) {
    const std::vector<std::string> unknown = app.remaining(true);
    if (unknown.empty())
        return error.what();
    const bool command = app.get_subcommands().empty() && !unknown.front().starts_with('-');
    return (command ? "unknown command " : "unknown argument ") + unknown.front();
}

std::string usageFailure(const CLI::App* app, const CLI::Error& error) {
    std::string called = "kvsig";
    if (const auto chosen = app->get_subcommands(); !chosen.empty())
        called += " " + chosen.front()->get_name();
    return "kvsig: " + reasonOf(*app, error) + "\nSee '" + called + " --help'.\n";
}

int runTool(int argc, const char* const* argv) {
    CLI::App app;
    app.failure_message(usageFailure);
    // The command opens whatever the library can read.
    kvsig::KrnlSetFileTypeFlag(4);
    int exitCode = kvsig::tool::exitWell;
    kvsig::tool::defineCommandLine(app, exitCode);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version arrive as errors of code 0.
        if (app.exit(error, std::cout, std::cerr) != 0)
            exitCode = kvsig::tool::exitWrongUsage;
    }
    return exitCode;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runTool(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "kvsig: " << error.what() << '\n';
        return kvsig::tool::exitFailed;
    }
}
