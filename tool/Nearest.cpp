#include "tool/Nearest.h"

#include "kvsig/util/Text.h"

#include <algorithm>
#include <numeric>

namespace kvsig::tool {
namespace {

// Edits (insert, delete, replace) from one text to the other, letter case ignored.
std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (lowerCase(a[i]) == lowerCase(b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

} // namespace

std::vector<std::string> nearestNames(const std::string& wanted,
                                      const std::vector<std::string>& names) {
    constexpr std::size_t mostNames = 3;
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& name : names)
        if (!name.empty())
            near.emplace_back(startsWithNoCase(name, wanted) ? 0 : editDistance(wanted, name),
                              name);
    std::stable_sort(near.begin(), near.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> best;
    for (const auto& [distance, name] : near)
        if (best.size() < mostNames && std::find(best.begin(), best.end(), name) == best.end())
            best.push_back(name);
    return best;
}

} // namespace kvsig::tool
