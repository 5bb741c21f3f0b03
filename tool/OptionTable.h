#pragma once

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

/// What the command line understands, as help, manual page and completions tell it.
namespace kvsig::tool {

struct OptionRow {
    std::vector<std::string> names;   ///< "-o", "--output"; none: a positional argument
    std::string value;                ///< "HZ", "csv|tsv"; empty: a flag
    std::vector<std::string> choices; ///< all that the value can be, where that is so
    std::string text;                 ///< one sentence without a full stop, with its default
    std::string group;
    bool required = false;
    bool repeated = false; ///< takes several values

    /// "-o, --output FILE", or "FILE..."
    [[nodiscard]] std::string usage() const;
};

struct CommandRow {
    std::string name;
    std::string text;
    std::string group;
    std::string examples; ///< lines
    std::vector<OptionRow> options;
};

/// The words with a separator between.
[[nodiscard]] std::string joined(const std::vector<std::string>& words, const char* between);

/// Positional arguments first, then the options in the order in which they were added, --help last.
[[nodiscard]] std::vector<OptionRow> optionTable(const CLI::App& app);
[[nodiscard]] std::vector<CommandRow> commandTable(const CLI::App& app);

/// The groups of rows in the order in which they come first.
template <typename Row>
[[nodiscard]] std::vector<std::string> groupsOf(const std::vector<Row>& rows) {
    std::vector<std::string> groups;
    for (const Row& row : rows)
        if (std::find(groups.begin(), groups.end(), row.group) == groups.end())
            groups.push_back(row.group);
    return groups;
}

} // namespace kvsig::tool
