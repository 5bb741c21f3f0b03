#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

class Filter;
struct FilterAttr;

/// Designs `filter` from a setting in hertz: both frequencies are divided by `samplingRate`, the
/// third value is handed on as it is. Returns what the design returns; 0 for a rate not above 0.
KVSIG_API int designFilter(Filter& filter, FilterAttr attr, double samplingRate);

/// The second value of a notch at `cutoff` that makes it `halfWidth` wide to either side at -3 dB,
/// all in hertz; 0 for a rate not above 0. Holds for notches that are narrow against their distance
/// from 0 and from half the rate.
[[nodiscard]] KVSIG_API double notchWidthFrequency(double cutoff, double halfWidth,
                                                   double samplingRate);

} // namespace kvsig
