#include "kvsig/montage/names/ScalpGrid.h"

#include "kvsig/util/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kvsig {

// clang-format off
const ScalpGrid Grid1020[scalpGridCount] = {
    {"Nz", 0x001}, {"Fp1", 0x20a}, {"Fpz", 0x209}, {"Fp2", 0x20c}, {"AF7", 0x30a}, {"AF3", 0x10a},
    {"AFz", 0x109}, {"AF4", 0x10c}, {"AF8", 0x30c}, {"F9", 0x00a}, {"F7", 0x20a}, {"F5", 0x00a},
    {"F3", 0x00a}, {"F1", 0x00a}, {"Fz", 0x009}, {"F2", 0x00c}, {"F4", 0x00c}, {"F6", 0x00c},
    {"F8", 0x20c}, {"F10", 0x00c}, {"FT9", 0x01a}, {"FT7", 0x21a}, {"FC5", 0x02a}, {"FC3", 0x02a},
    {"FC1", 0x02a}, {"FCz", 0x029}, {"FC2", 0x02c}, {"FC4", 0x02c}, {"FC6", 0x02c}, {"FT8", 0x21c},
    {"FT10", 0x01c}, {"T9", 0x012}, {"T7", 0x212}, {"T3", 0x212}, {"T1", 0x012}, {"C5", 0x022},
    {"C3", 0x022}, {"C1", 0x022}, {"Cz", 0x021}, {"C2", 0x024}, {"C4", 0x024}, {"C6", 0x024},
    {"T2", 0x014}, {"T4", 0x214}, {"T8", 0x214}, {"T10", 0x014}, {"TP9", 0x052}, {"TP7", 0x252},
    {"CP5", 0x062}, {"CP3", 0x062}, {"CP1", 0x062}, {"CPz", 0x061}, {"CP2", 0x064}, {"CP4", 0x064},
    {"CP6", 0x064}, {"TP8", 0x254}, {"TP10", 0x054}, {"P9", 0x042}, {"P7", 0x242}, {"T5", 0x212},
    {"P5", 0x042}, {"P3", 0x042}, {"P1", 0x042}, {"Pz", 0x041}, {"P2", 0x044}, {"P4", 0x044},
    {"P6", 0x044}, {"T6", 0x214}, {"P8", 0x244}, {"P10", 0x044}, {"PO7", 0x2c2}, {"PO3", 0x0c2},
    {"POz", 0x0c1}, {"PO4", 0x0c4}, {"PO8", 0x2c4}, {"O1", 0x282}, {"Oz", 0x281}, {"O2", 0x284},
};
// clang-format on

namespace {

using Packed = std::uint64_t;

// A name of up to eight letters as one number, whatever their case; 0 for a longer one.
Packed packed(std::string_view name) {
    Packed bits = 0;
    if (name.size() > sizeof bits)
        return 0;
    for (const char letter : name)
        bits = bits << 8 | static_cast<unsigned char>(lowerCase(letter));
    return bits;
}

struct PackedName {
    Packed name = 0;
    int index = 0;
    friend bool operator<(const PackedName& a, const PackedName& b) { return a.name < b.name; }
};
using PackedTable = std::array<PackedName, scalpGridCount>;

PackedTable sortedTable() {
    PackedTable table;
    for (int i = 0; i < scalpGridCount; ++i)
        table[static_cast<std::size_t>(i)] = {packed(Grid1020[i].pszName), i};
    std::stable_sort(table.begin(), table.end());
    return table;
}

} // namespace

// Every channel of a recording asks when it is opened, so names are compared as numbers.
int IndexOf1020(const char* name) {
    static const PackedTable table = sortedTable();
    const PackedName wanted{packed(viewOf(name))};
    const auto found = std::lower_bound(table.begin(), table.end(), wanted);
    return found == table.end() || found->name != wanted.name ? -1 : found->index;
}

} // namespace kvsig
