#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

/// Bytes that a buffer for one of the texts below must have room for, the final NUL among them.
inline constexpr int filterTextSize = 16;

/// These write a value for the user's eye into `buf`, which they return; a null buffer stays
/// untouched. The decimal mark is a point in every locale. Few digits are kept by design: 1000 Hz
/// is "1e+03 Hz".

/// As "%.3g Hz".
KVSIG_API char* FreqAsText(char* buf, double hz);
/// As "%.2g sec".
KVSIG_API char* TimeConstantAsText(char* buf, double seconds);
/// Microvolts per millimetre, as "%.4g uV".
KVSIG_API char* UvPerMMAsText(char* buf, double value);

} // namespace kvsig
