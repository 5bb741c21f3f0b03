#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

/// Rewrites electrode names in place between the two naming generations and returns how many
/// names changed. `first` points to the first character, `last` to the end of the text, which is
/// read but not written (normally the terminator).
///
/// With `toNew`: T3, T4, T5, T6 become T7, T8, P7, P8; else the other way round. Only whole
/// two-character names in upper case change: FT7, T10 and t3 are left alone.
KVSIG_API int Translate1020To1010Names(char* first, char* last, bool toNew);

} // namespace kvsig
