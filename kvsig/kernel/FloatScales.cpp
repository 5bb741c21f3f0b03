#include "kvsig/kernel/FloatScales.h"

#include "kvsig/util/WideLoops.h"

#include <bit>
#include <cmath>
#include <cstddef>

namespace kvsig {
namespace {

constexpr std::size_t places = 256;

// Beyond these the products or their rests could leave the normal floats.
constexpr double smallestScale = 0x1p-60;
constexpr double largestScale = 0x1p60;

// The magnitude of the lowest count; 0 where floats do not hold every count.
std::int32_t lowestCount(RawCode code) {
    switch (code) {
    case RawCode::native16:
    case RawCode::little16:
        return 1 << 15;
    case RawCode::little24:
        return 1 << 23;
    case RawCode::native32:
        break;
    }
    return 0;
}

// Of `tried` counts from `first` on, every second one.
KVSIG_WIDE_LOOPS bool allEqual(double scale, FloatScale floats, std::int32_t first,
                               std::int32_t tried) {
    std::uint32_t differences = 0;
    for (std::int32_t i = 0; i < tried; ++i) {
        const std::int32_t raw = first + 2 * i;
        const auto rounded = static_cast<float>(static_cast<double>(raw) * scale);
        differences |= std::bit_cast<std::uint32_t>(rounded) ^
                       std::bit_cast<std::uint32_t>(floats.times(static_cast<float>(raw)));
    }
    return differences == 0;
}

} // namespace

// Powers of two and the sign pass through both products unchanged, so the odd counts and 0, whose
// sign may differ, stand for all.
bool splitScale(double scale, RawCode code, FloatScale& floats) {
    const std::int32_t lowest = lowestCount(code);
    const double magnitude = std::abs(scale);
    if (lowest == 0 || !(magnitude >= smallestScale && magnitude <= largestScale))
        return false;
    floats.high = static_cast<float>(scale);
    floats.low = static_cast<float>(scale - static_cast<double>(floats.high));
    constexpr std::int32_t atOnce = 1 << 12;
    bool equal = allEqual(scale, floats, 0, 1);
    for (std::int32_t first = 1; equal && first < lowest; first += 2 * atOnce)
        equal = allEqual(scale, floats, first, atOnce);
    return equal;
}

FloatScales::Entry& FloatScales::entryOf(double scale, RawCode code) {
    m_entries.resize(places);
    const std::uint64_t hash = std::bit_cast<std::uint64_t>(scale) * 0x9E3779B97F4A7C15U;
    Entry& entry = m_entries[hash >> 56U];
    if (entry.code != code ||
        std::bit_cast<std::uint64_t>(entry.scale) != std::bit_cast<std::uint64_t>(scale)) {
        entry = Entry();
        entry.scale = scale;
        entry.code = code;
    }
    return entry;
}

const FloatScale* FloatScales::find(double scale, RawCode code, std::int64_t count) {
    if (!fusesInWideLoops() || lowestCount(code) == 0)
        return nullptr;
    Entry& entry = entryOf(scale, code);
    if (entry.finding == Finding::none) {
        // Trying pays once four times as many counts were converted.
        entry.counts += count;
        if (entry.counts < 2 * std::int64_t{lowestCount(code)})
            return nullptr;
        entry.finding = splitScale(scale, code, entry.floats) ? Finding::equal : Finding::different;
    }
    return entry.finding == Finding::equal ? &entry.floats : nullptr;
}

} // namespace kvsig
