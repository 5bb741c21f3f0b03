#pragma once

#include <cstdint>
#include <limits>

namespace kvsig {

/// Samples of a range that is inclusive at both ends; 0 when it is empty or longer than an int can
/// say.
[[nodiscard]] constexpr int rangeLength(long first, long last) {
    if (first > last)
        return 0;
    const std::uint64_t steps =
        static_cast<std::uint64_t>(last) - static_cast<std::uint64_t>(first);
    return steps < static_cast<std::uint64_t>(std::numeric_limits<int>::max())
               ? static_cast<int>(steps + 1)
               : 0;
}

/// Whether `before` samples in front of a range and `after` behind it have indices at all; neither
/// count is negative.
[[nodiscard]] constexpr bool canWiden(long first, long last, int before, int after) {
    return first >= std::numeric_limits<long>::min() + before &&
           last <= std::numeric_limits<long>::max() - after;
}

} // namespace kvsig
