#pragma once

#include "StraightFilters.h"

#include <cstdint>
#include <span>

namespace kvsig::bench {

/// The chain of a page: low-pass, high-pass, notch, and the samples before a page with which they
/// run in.
struct PagingChain {
    Recurrence lowPass, highPass, notch;
    std::int64_t runIn;
};

/// A row: `first` minus `second`, filtered, to `out`.
struct StraightRow {
    const float* first;
    const float* second;
    float* out;
};

/// The three recurrences over `length` samples of all rows, side by side in vector lanes; what is
/// behind the run-in goes to `out`. Each row's operations are those of straightFirstOrder() and
/// straightSecondOrder() in their order.
void straightLanes(const PagingChain& chain, std::span<const StraightRow> rows,
                   std::int64_t length);

} // namespace kvsig::bench
