#pragma once

#include "StraightFilters.h"
#include "kvsig/filters/Filter.h"

namespace kvsig::bench {

/// The weights of a recursive filter as the straight loops take them.
[[nodiscard]] inline Recurrence recurrence(const Filter& filter) {
    const auto numerator = [&](int i) { return static_cast<float>(filter.getNumerWeight(i)); };
    const auto denominator = [&](int i) { return static_cast<float>(filter.getDenomWeight(i)); };
    return {numerator(0), numerator(1), numerator(2), denominator(1), denominator(2)};
}

} // namespace kvsig::bench
