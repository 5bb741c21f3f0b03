#pragma once

#include <concepts>
#include <limits>
#include <utility>

namespace kvsig {

/// `value` truncated toward zero and held inside the range of `Int`; NaN gives 0.
///
/// The one conversion from floating point to integers: a plain cast is undefined as soon as a
/// hostile header makes the value leave the range.
template <std::integral Int>
[[nodiscard]] constexpr Int saturate(double value) {
    if (!(value == value))
        return 0;
    constexpr auto low = static_cast<double>(std::numeric_limits<Int>::min());
    constexpr auto high = static_cast<double>(std::numeric_limits<Int>::max());
    if (value <= low)
        return std::numeric_limits<Int>::min();
    if (value >= high)
        return std::numeric_limits<Int>::max();
    return static_cast<Int>(value);
}

/// `value` held inside the range of `Int`.
template <std::integral Int, std::integral From>
[[nodiscard]] constexpr Int saturate(From value) {
    if (std::cmp_less(value, std::numeric_limits<Int>::min()))
        return std::numeric_limits<Int>::min();
    if (std::cmp_greater(value, std::numeric_limits<Int>::max()))
        return std::numeric_limits<Int>::max();
    return static_cast<Int>(value);
}

} // namespace kvsig
