#pragma once

#include "kvsig/util/Export.h"

#include <vector>

namespace kvsig {

/// The values that a host offers in its menus, in the order in which they are offered. Each list is
/// one process-wide vector: read it, do not change it.

/// Microvolts per millimetre.
KVSIG_API std::vector<float>& GetDefValsSensitivity();
/// Cutoffs of high-pass filters in hertz.
KVSIG_API std::vector<float>& GetDefValsLowFilter();
/// Cutoffs of low-pass filters in hertz.
KVSIG_API std::vector<float>& GetDefValsHighFilter();
/// Hertz.
KVSIG_API std::vector<float>& GetDefValsNotchFilter();

/// The value of `list` that is nearest to `x`, the earliest of equally near ones. Distances count
/// in whole numbers, their fraction is cut off: all values less than 1 away from `x` are equally
/// near, so any x below 1.0533 picks 0.0533 among the low filters. This is kept on purpose. An
/// empty list gives `x`; a NaN gives the first value.
[[nodiscard]] KVSIG_API float GetNearestDefVal(const std::vector<float>& list, float x);

} // namespace kvsig
