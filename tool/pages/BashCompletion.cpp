#include "tool/OptionTable.h"
#include "tool/pages/Pages.h"
#include "tool/pages/Pattern.h"
#include "tool/pages/ValueKind.h"

namespace kvsig::tool {
namespace {

std::string wordsOffer(const std::vector<std::string>& words) {
    return "_kvsig_words '" + joined(words, " ") + "' \"$word\"";
}

std::string offerFor(const OptionRow& row) {
    switch (valueKind(row)) {
    case ValueKind::choice:
        return wordsOffer(row.choices);
    case ValueKind::file:
        return "_kvsig_files \"$word\"";
    case ValueKind::type:
        return wordsOffer(readableTypes());
    case ValueKind::montage:
        return "[[ -n $file ]] && _kvsig_lines \"${word#[\\\"\\']}\" "
               "< <(kvsig montage -q \"$file\" 2>/dev/null | sed -n 's/^  //p')";
    default:
        return ":";
    }
}

std::string valueCases(const CommandRow& command) {
    std::string text;
    for (const OptionRow& row : command.options) {
        if (row.value.empty() || row.names.empty())
            continue;
        std::vector<std::string> patterns;
        for (const std::string& name : row.names)
            patterns.push_back("'" + command.name + " " + name + "'");
        text += "    " + joined(patterns, " | ") + ")\n        " + offerFor(row) +
                "\n        return ;;\n";
    }
    return text;
}

std::string namesIn(const std::vector<OptionRow>& rows) {
    std::vector<std::string> names;
    for (const OptionRow& row : rows)
        names.insert(names.end(), row.names.begin(), row.names.end());
    return joined(names, " ");
}

} // namespace

std::string bashCompletion(const CLI::App& app, std::string pattern) {
    std::string commands;
    std::string values;
    std::string options;
    for (const CommandRow& command : commandTable(app)) {
        commands += command.name + " ";
        values += valueCases(command);
        options += "    " + command.name + ") options='" + namesIn(command.options) + "' ;;\n";
    }
    fill(pattern, "@VALUES@\n", values);
    fill(pattern, "@COMMANDS@", commands + namesIn(optionTable(app)));
    fill(pattern, "@OPTIONS@\n", options);
    return pattern;
}

} // namespace kvsig::tool
