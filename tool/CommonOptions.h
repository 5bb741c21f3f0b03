#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

/// Options that mean the same in every command.
namespace kvsig::tool {

void addFilesArgument(CLI::App& command, std::vector<std::string>& files);
void addTypeOption(CLI::App& command, std::string& type);
void addQuietFlag(CLI::App& command, bool& quiet);

} // namespace kvsig::tool
