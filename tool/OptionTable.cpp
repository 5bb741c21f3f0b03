#include "tool/OptionTable.h"

#include "kvsig/util/Text.h"
namespace kvsig::tool {
namespace {

// The parser tells choices as "TEXT:{csv,tsv}".
std::vector<std::string> choicesOf(const std::string& typeName) {
    const std::size_t open = typeName.find('{');
    const std::size_t close = typeName.rfind('}');
    if (open == std::string::npos || close == std::string::npos)
        return {};
    return splitWords(typeName.substr(open + 1, close - open - 1), ',');
}

// What cannot be given together, in the order of the names.
std::vector<std::string> exclusions(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const CLI::Option* other : option.get_excludes())
        names.push_back("--" + other->get_lnames().front());
    std::sort(names.begin(), names.end());
    return names;
}

std::string textOf(const CLI::Option& option) {
    std::string text = option.get_description();
    if (!option.get_default_str().empty())
        text += " (default: " + option.get_default_str() + ")";
    if (const std::vector<std::string> others = exclusions(option); !others.empty())
        text += "; not with " + joined(others, ", ");
    return text;
}

OptionRow rowOf(const CLI::Option& option) {
    OptionRow row;
    for (const std::string& name : option.get_snames())
        row.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        row.names.push_back("--" + name);
    const bool takesValue = option.get_items_expected_max() > 0;
    if (option.get_positional()) {
        row.value = option.get_name(true);
    } else if (takesValue) {
        row.choices = choicesOf(option.get_type_name());
        row.value = row.choices.empty() ? option.get_type_name() : joined(row.choices, "|");
    }
    row.text = textOf(option);
    row.group = option.get_positional() ? "Arguments" : option.get_group();
    row.required = option.get_required();
    row.repeated = option.get_items_expected_max() > 1;
    return row;
}

} // namespace

std::string joined(const std::vector<std::string>& words, const char* between) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

std::string OptionRow::usage() const {
    const std::string several = repeated ? "..." : "";
    if (names.empty())
        return value + several;
    return joined(names, ", ") + (value.empty() ? "" : " " + value) + several;
}

std::vector<OptionRow> optionTable(const CLI::App& app) {
    std::vector<OptionRow> rows;
    for (const CLI::Option* option : app.get_options())
        rows.push_back(rowOf(*option));
    // The parser's own come first.
    const auto isOwn = [](const OptionRow& row) {
        return !row.names.empty() &&
               (row.names.back() == "--help" || row.names.back() == "--version");
    };
    std::stable_partition(rows.begin(), rows.end(),
                          [&isOwn](const OptionRow& row) { return !isOwn(row); });
    std::stable_partition(rows.begin(), rows.end(),
                          [](const OptionRow& row) { return row.names.empty(); });
    return rows;
}

std::vector<CommandRow> commandTable(const CLI::App& app) {
    std::vector<CommandRow> rows;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        rows.push_back({command->get_name(), command->get_description(), command->get_group(),
                        command->get_footer(), optionTable(*command)});
    return rows;
}

} // namespace kvsig::tool
