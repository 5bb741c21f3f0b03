#include "kvsig/util/Version.h"
#include "tool/HelpPage.h"
#include "tool/OptionTable.h"
#include "tool/pages/Pages.h"
#include "tool/pages/Pattern.h"

#include <string_view>

namespace kvsig::tool {
namespace {

// Plain text as the formatter takes it: hyphens that can be copied, and no line that begins like a
// request.
std::string plain(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '\\')
            out += "\\e";
        else if (c == '-')
            out += "\\-";
        else if ((c == '.' || c == '\'') && (out.empty() || out.back() == '\n'))
            out += std::string("\\&") + c;
        else
            out += c;
    }
    return out;
}

// Names stand bold, what is put in for a value in italics.
std::string heading(const OptionRow& row) {
    std::string text;
    for (const std::string& name : row.names)
        text += (text.empty() ? "\\fB" : ", \\fB") + plain(name) + "\\fR";
    if (!row.value.empty())
        text += (text.empty() ? "\\fI" : " \\fI") + plain(row.value) + "\\fR";
    return text + (row.repeated ? "..." : "");
}

std::string optionList(const std::vector<OptionRow>& rows) {
    std::string text;
    for (const OptionRow& row : rows)
        text += ".TP\n" + heading(row) + "\n" + plain(row.text) + ".\n";
    return text;
}

// The lines of the examples without their heading.
std::string exampleLines(const std::string& footer) {
    const std::size_t first = footer.find('\n');
    return first == std::string::npos ? std::string()
                                      : ".PP\n.EX\n" + plain(footer.substr(first + 1)) + "\n.EE\n";
}

std::string commandList(const CLI::App& app) {
    std::string text;
    for (const CommandRow& row : commandTable(app)) {
        const std::string name = "kvsig " + row.name;
        text += ".SS " + plain(name) + "\n" + plain(row.text) + ".\n.PP\n.EX\n" +
                plain(usageOf(*app.get_subcommand(row.name), name)) + "\n.EE\n" +
                optionList(row.options) + exampleLines(row.examples);
    }
    return text;
}

} // namespace

std::string manPage(const CLI::App& app, std::string pattern) {
    fill(pattern, "@VERSION@", libraryVersion().release);
    fill(pattern, "@COMMANDS@\n", commandList(app));
    fill(pattern, "@OPTIONS@\n", optionList(optionTable(app)));
    return pattern;
}

} // namespace kvsig::tool
