#pragma once

#include <CLI/CLI.hpp>

namespace kvsig::tool {

/// All that `kvsig` understands: name, help, version and the subcommands. Both arguments outlive
/// the parse, whose callbacks set `exitCode`.
void defineCommandLine(CLI::App& app, int& exitCode);

} // namespace kvsig::tool
