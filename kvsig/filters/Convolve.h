#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

/// Slides `h` over the samples x[0] .. x[n - 1] in steps of `step` samples and weights them:
///
/// - not `symmetric`, `h` holds `nh` weights:
///   out[k] = sum over j < nh of x[k * step + j] * h[j];
/// - `symmetric`, `h` holds the outer half of `nh` weights, nh / 2 of them, and the centre weight
///   when nh is odd:
///   out[k] = sum over j < nh / 2 of (x[k * step + j] + x[k * step + nh - 1 - j]) * h[j],
///   plus, last, h[nh / 2] * x[k * step + nh / 2] when nh is odd. A negative `sign` subtracts
///   instead and leaves the centre out.
///
/// Sums are kept in single precision and run in that order, which is part of the result.
///
/// *outCount (which may be null) is set to (n - nh) / step + 1, 0 when n < nh. The result is a new
/// array of n / step + 1 values (1 for a negative n), those from *outCount on 0; the caller
/// releases it with delete[]. Null, and *outCount 0, for a null `x` or `h`, a step below 1, a
/// negative `nh` or when memory runs out.
[[nodiscard]] KVSIG_API float* convolve(float* x, int n, float* const h, int nh, int step, int sign,
                                        int symmetric, int* outCount);

} // namespace kvsig
