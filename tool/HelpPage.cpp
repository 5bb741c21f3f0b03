#include "tool/HelpPage.h"

#include "kvsig/util/Text.h"
#include "tool/OptionTable.h"

namespace kvsig::tool {
namespace {

constexpr std::size_t pageWidth = 80;
constexpr std::size_t optionColumn = 26;
constexpr std::size_t commandColumn = 12;

// The text from its column on, broken between words.
std::string wrapped(const std::string& text, std::size_t textColumn) {
    std::string out;
    std::size_t column = textColumn;
    for (const std::string& word : splitWords(text, ' ')) {
        const bool isFirst = column == textColumn;
        if (!isFirst && column + 1 + word.size() > pageWidth) {
            out += "\n" + std::string(textColumn, ' ') + word;
            column = textColumn + word.size();
        } else {
            out += (isFirst ? "" : " ") + word;
            column += (isFirst ? 0 : 1) + word.size();
        }
    }
    return out + "\n";
}

std::string line(std::string left, const std::string& text, std::size_t textColumn) {
    left.insert(0, "  ");
    if (left.size() + 2 > textColumn)
        return left + "\n" + std::string(textColumn, ' ') + wrapped(text, textColumn);
    left.resize(textColumn, ' ');
    return left + wrapped(text, textColumn);
}

// Long names stand below each other, whether or not there is a short one.
std::string leftOf(const OptionRow& row) {
    const bool onlyLong = row.names.size() == 1 && row.names.front().starts_with("--");
    return (onlyLong ? "    " : "") + row.usage();
}

std::string leftOf(const CommandRow& row) { return row.name; }

template <typename Row>
std::string sections(const std::vector<Row>& rows, std::size_t textColumn) {
    std::string text;
    for (const std::string& group : groupsOf(rows)) {
        text += "\n" + group + ":\n";
        for (const Row& row : rows)
            if (row.group == group)
                text += line(leftOf(row), row.text, textColumn);
    }
    return text;
}

} // namespace

std::string usageOf(const CLI::App& app, const std::string& name) {
    std::string usage = name;
    if (!commandTable(app).empty())
        return usage + " COMMAND FILE... [OPTIONS]";
    for (const OptionRow& row : optionTable(app))
        if (row.required)
            usage += " " + (row.names.empty() ? row.usage() : row.names.front() + " " + row.value);
    return usage + " [OPTIONS]";
}

std::string HelpPage::make_help(const CLI::App* app, std::string name,
                                CLI::AppFormatMode mode) const {
    static_cast<void>(mode);
    const std::string& footer = app->get_footer();
    return app->get_description() + "\n\nUsage: " + usageOf(*app, name) + "\n" +
           sections(commandTable(*app), commandColumn) + sections(optionTable(*app), optionColumn) +
           (footer.empty() ? "" : "\n" + footer + "\n");
}

} // namespace kvsig::tool
