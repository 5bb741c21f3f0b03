#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// What the commands that print facts about files have in common.
namespace kvsig::tool {

using Json = nlohmann::ordered_json;

struct FactsOptions {
    std::vector<std::string> files;
    std::string type;
    bool json = false;
    bool quiet = false;
};

void addFactsOptions(CLI::App& command, FactsOptions& options);

/// What is printed of a file. Without `json`, one that failed is told in the list with what was
/// complained of first; any other is left out.
struct FileFacts {
    Json json;
    std::string text;
    int exitCode = 0;
};

/// Prints the facts of each file, as text or as JSON: one object for one file, a list for several.
/// Returns the exit code.
[[nodiscard]] int
printFacts(const FactsOptions& options,
           const std::function<FileFacts(const std::string& file, int type)>& factsOf);

} // namespace kvsig::tool
