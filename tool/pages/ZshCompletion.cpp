#include "tool/OptionTable.h"
#include "tool/pages/Pages.h"
#include "tool/pages/Pattern.h"
#include "tool/pages/ValueKind.h"

#include <string_view>

namespace kvsig::tool {
namespace {

// Within single quotes and, with `special`, within what zsh reads of an option.
std::string quoted(std::string_view text, std::string_view special) {
    std::string out;
    for (const char c : text) {
        if (c == '\'')
            out += "'\\''";
        else if (special.find(c) != std::string_view::npos)
            out += std::string("\\") + c;
        else
            out += c;
    }
    return out;
}

std::string actionFor(const OptionRow& row) {
    switch (valueKind(row)) {
    case ValueKind::choice:
        return "(" + joined(row.choices, " ") + ")";
    case ValueKind::file:
        return "_files";
    case ValueKind::type:
        return "(" + joined(readableTypes(), " ") + ")";
    case ValueKind::montage:
        return "_kvsig_montages";
    default:
        return " ";
    }
}

// '(-o --output)'{-o,--output}'[what it does]:PATH:_files'
std::string optionEntry(const OptionRow& row) {
    if (row.names.empty())
        return std::string(row.repeated ? "'*" : "'") + ":" + quoted(row.value, ":") + ":_files'";
    const bool one = row.names.size() == 1;
    std::string text = one ? "'" + row.names.front()
                           : "'(" + joined(row.names, " ") + ")'{" + joined(row.names, ",") + "}'";
    text += "[" + quoted(row.text, "[]:\\") + "]";
    if (!row.value.empty())
        text += ":" + quoted(row.value, ":") + ":" + actionFor(row);
    return text + "'";
}

std::string argumentCase(const CommandRow& command) {
    std::string text = "        " + command.name + ")\n            _arguments";
    for (const OptionRow& row : command.options)
        text += " \\\n                " + optionEntry(row);
    return text + " ;;\n";
}

} // namespace

std::string zshCompletion(const CLI::App& app, std::string pattern) {
    std::string commands;
    std::string arguments;
    for (const CommandRow& command : commandTable(app)) {
        commands += "        '" + command.name + ":" + quoted(command.text, ":\\") + "'\n";
        arguments += argumentCase(command);
    }
    std::string options;
    for (const OptionRow& row : optionTable(app))
        options += "        " + optionEntry(row) + " \\\n";
    fill(pattern, "@COMMANDS@\n", commands);
    fill(pattern, "@OPTIONS@\n", options);
    fill(pattern, "@ARGUMENTS@\n", arguments);
    return pattern;
}

} // namespace kvsig::tool
