#pragma once

#include "FilterCase.h"
#include "kvsig/filters/Filter.h"

#include <memory>
#include <vector>

namespace kvsig::bench {

/// A filter of this library and its weights.
struct MeasuredFilter {
    std::shared_ptr<Filter> filter;
    FilterCase facts;
    double goal; ///< times the limit
};

/// FIR low-passes of 45 and of 255 taps, a first-order high-pass of 1 Hz and a notch of 60 Hz at
/// 256 Hz.
[[nodiscard]] std::vector<MeasuredFilter> measuredFilters();

/// The straight loop of a filter: from `signal` to `out`, which for a recurrence holds the signal.
void runStraight(const FilterCase& filter, const std::vector<float>& signal,
                 std::vector<float>& out);

} // namespace kvsig::bench
