#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

class Filter;
struct FilterAttr;

/// Designs `filter` from a setting in hertz: both frequencies are divided by `samplingRate`, the
/// third value is handed on as it is. Returns what the design returns; 0 for a rate not above 0.
KVSIG_API int designFilter(Filter& filter, FilterAttr attr, double samplingRate);

} // namespace kvsig
