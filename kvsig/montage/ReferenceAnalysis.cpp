#include "kvsig/montage/ReferenceAnalysis.h"

#include "kvsig/montage/names/ScalpGrid.h"
#include "kvsig/util/Text.h"

#include <cstddef>
#include <unordered_map>

namespace kvsig {
namespace {

std::optional<std::string> scalpReference(std::span<const RowGrids> rows) {
    std::optional<std::string> reference;
    for (const RowGrids& row : rows) {
        if (IndexOf1020(row.grid1.c_str()) < 0)
            continue;
        if (reference && !equalNoCase(*reference, row.grid2))
            return std::nullopt;
        if (!reference)
            reference = row.grid2;
    }
    return reference;
}

struct Votes {
    std::size_t count = 0;
    const std::string* spelling = nullptr;
};

std::optional<std::string> majorityReference(std::span<const RowGrids> rows) {
    std::unordered_map<std::string, Votes> votes;
    for (const RowGrids& row : rows) {
        Votes& cast = votes[lowerCase(row.grid2)];
        if (!cast.spelling)
            cast.spelling = &row.grid2;
        if (2 * ++cast.count > rows.size())
            return *cast.spelling;
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> commonReference(std::span<const RowGrids> rows) {
    const auto reference = scalpReference(rows);
    return reference ? reference : majorityReference(rows);
}

} // namespace kvsig
