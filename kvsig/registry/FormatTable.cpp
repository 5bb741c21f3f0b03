#include "kvsig/registry/FormatTable.h"

#include "kvsig/util/Text.h"

#include <algorithm>

namespace kvsig {
namespace {

constexpr FormatRow rows[] = {
    {6, "EDF90 (*.edf)", "*.edf"},
    {41, "Lifelines (*.edf)", "*.edf"},
    {47, "TelefactorEDF (*.edf)", "*.edf"},
    {48, "BDF (*.bdf)", "*.bdf"},
};

template <typename Test>
const FormatRow* findRow(Test test) {
    const auto row = std::find_if(std::begin(rows), std::end(rows), test);
    return row == std::end(rows) ? nullptr : row;
}

} // namespace

std::string_view FormatRow::typeName() const {
    const std::string_view text = name;
    return text.substr(0, text.find(' '));
}

std::span<const FormatRow> readableFormats() { return rows; }

const FormatRow* formatByName(std::string_view name) {
    return findRow([name](const FormatRow& row) { return equalNoCase(row.typeName(), name); });
}

const FormatRow* formatByType(int type) {
    return findRow([type](const FormatRow& row) { return row.type == type; });
}

std::string typeNameOf(int type) {
    const FormatRow* row = formatByType(type);
    return row ? std::string(row->typeName()) : std::string();
}

} // namespace kvsig
