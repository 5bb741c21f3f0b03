#pragma once

#include "kvsig/filters/FilterAttr.h"
#include "kvsig/util/Export.h"

namespace kvsig {

class Filter;

/// Whether a setting filters: it is switched on, with a cutoff that is finite and above 0. Others
/// come from hosts and definitions, and would make filters that run away.
[[nodiscard]] KVSIG_API bool isFilterOn(FilterAttr attr);

/// Designs `filter` from a setting in hertz: both frequencies are divided by `samplingRate`, the
/// third value is handed on as it is. Returns what the design returns; 0, and the filter is as it
/// was, for a rate or a cutoff not above 0 and an infinite cutoff.
KVSIG_API int designFilter(Filter& filter, FilterAttr attr, double samplingRate);

/// Hertz to either side, at -3 dB, of a notch that is known by its frequency alone.
inline constexpr double usualNotchHalfWidth = 1.0;

/// The second value of a notch at `cutoff` that makes it `halfWidth` wide to either side at -3 dB,
/// all in hertz; for a rate not above 0 that of high rates, which is `halfWidth` itself. Holds for
/// notches that are narrow against their distance from 0 and from half the rate.
[[nodiscard]] KVSIG_API double notchWidthFrequency(double cutoff, double halfWidth,
                                                   double samplingRate);

} // namespace kvsig
