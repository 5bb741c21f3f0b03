#pragma once

#include <vector>

namespace kvsig {

/// Weights of an ideal low pass with cutoff `cutoff` (cycles per sample) under a Kaiser window of
/// `taps` (at least 1) points, whose shape gives about |attenuation| dB in the stop band.
///
/// The filter is symmetric, so one half is returned: taps / 2 + 1 weights from the outermost to the
/// centre. An even number of taps has no centre tap; its last weight is 0. Empty when the window
/// cannot be computed (attenuation beyond some 6400 dB). May throw std::bad_alloc.
[[nodiscard]] std::vector<float> kaiserLowPass(int taps, double cutoff, double attenuation);

} // namespace kvsig
