#pragma once

namespace CLI {
class App;
}

/// The subcommands: one file pair each, which main() knows by one function alone.
///
/// Such a function adds its subcommand to `app`, with a callback that runs after parsing and sets
/// `exitCode`. Both arguments outlive the parse. A callback reports on its own:
/// - wrong usage found only after parsing: throw a CLI::ParseError that names option and value;
/// - a file that failed: complain(), the other files are still done, then exitFailed;
/// - data goes to stdout, words to stderr, progress to stderr when that is a terminal.
namespace kvsig::tool {

inline constexpr int exitWell = 0;
inline constexpr int exitFailed = 1;     ///< some file failed
inline constexpr int exitWrongUsage = 2; ///< unknown or contradicting arguments

void addTypesCommand(CLI::App& app, int& exitCode);
void addInfoCommand(CLI::App& app, int& exitCode);
void addCheckCommand(CLI::App& app, int& exitCode);
void addEventsCommand(CLI::App& app, int& exitCode);
void addMontageCommand(CLI::App& app, int& exitCode);
void addExportCommand(CLI::App& app, int& exitCode);
void addPlotCommand(CLI::App& app, int& exitCode);
void addSynthCommand(CLI::App& app, int& exitCode);

} // namespace kvsig::tool
