#pragma once

#include <cstddef>

namespace kvsig {

/// How the samples under a weight are taken together.
enum class Fold {
    none,       ///< each sample has a weight of its own
    sum,        ///< the samples at equal distance from the centre are added
    difference, ///< the later of the two is subtracted
};

/// The sums that convolve() is defined by: `count` outputs of `taps` weights each, the first sample
/// of output k at x[k * step]. `out` and `x` must not overlap. There are no samples read beyond
/// those under the last output's weights.
void slidingSums(const float* x, std::ptrdiff_t step, const float* h, int taps, Fold fold,
                 float* out, int count);

} // namespace kvsig
