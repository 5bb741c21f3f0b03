#include "tool/Table.h"

#include "tool/Words.h"

#include <algorithm>

namespace kvsig::tool {
namespace {

std::size_t columns(const std::string& utf8) {
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
    }));
}

} // namespace

std::string tableText(std::vector<std::vector<std::string>> rows,
                      const std::vector<bool>& rightAligned) {
    for (auto& row : rows)
        std::transform(row.begin(), row.end(), row.begin(),
                       [](const std::string& cell) { return printable(cell); });
    std::vector<std::size_t> widths(rightAligned.size(), 0);
    for (const auto& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], columns(row[i]));
    std::string text;
    for (const auto& row : rows) {
        std::string line = " ";
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string blanks(widths[i] - columns(row[i]), ' ');
            line += " " + (rightAligned[i] ? blanks + row[i] : row[i] + blanks) + " ";
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

} // namespace kvsig::tool
