#pragma once

#include <CLI/CLI.hpp>
#include <string>

/// Pages made from the option table at build time. Each takes its pattern, the text of the file
/// beside its source, and fills in what stands there between two @.
namespace kvsig::tool {

[[nodiscard]] std::string manPage(const CLI::App& app, std::string pattern);

/// Completion of commands, options, their choices, files, types, and the montages of the file that
/// stands on the line already.
[[nodiscard]] std::string bashCompletion(const CLI::App& app, std::string pattern);
[[nodiscard]] std::string zshCompletion(const CLI::App& app, std::string pattern);

} // namespace kvsig::tool
