#pragma once

#include <cstdint>

namespace kvsig::bench {

/// Weights of y[i] = b0 x[i] + b1 x[i-1] + b2 x[i-2] + a1 y[i-1] + a2 y[i-2].
struct Recurrence {
    float b0, b1, b2, a1, a2;
};

/// The limit that filters are measured against: straight loops that make the same single-precision
/// operations in the same order as the library's filters, so results are equal bit by bit. All work
/// on a block of its own; the recurrences in place, their first samples unchanged as history.
void straightFirstOrder(const Recurrence& weights, float* data, std::int64_t count);
void straightSecondOrder(const Recurrence& weights, float* data, std::int64_t count);
/// `half` holds the outer weights and the centre one of an odd number of `taps`. The first and last
/// taps / 2 results are 0.
void straightFir(const float* half, std::int64_t taps, const float* x, std::int64_t count,
                 float* out);

} // namespace kvsig::bench
