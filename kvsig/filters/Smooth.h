#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

/// Centred moving average: value i of the result is the mean of the samples within `width` / 2 of
/// x[i], so an even width counts as the next odd one. The window is cut at both ends of x.
///
/// Takes time in proportion to n, whatever the width. Each mean is computed from its own window
/// alone, in double precision: an infinite or huge sample spoils no others.
///
/// Returns a new array of `n` values, which the caller releases with delete[]; null for a null `x`,
/// an n or width below 1, or when memory runs out.
[[nodiscard]] KVSIG_API float* smooth(float* x, int n, int width);

} // namespace kvsig
