#pragma once

#include "kvsig/util/Export.h"

/// Time stamps (seconds since 1970-01-01 00:00 UTC, negative before) as seconds since midnight; 0
/// for a stamp that has no calendar date. Any thread.
namespace kvsig {

/// By the UTC clock.
KVSIG_API long GMTimeToSec(long stamp);

/// By a local clock that is never moved for daylight saving: the standard offset that the system's
/// zone has now is added, whatever date the stamp has.
KVSIG_API long LocalTimeToSec(long stamp);

/// By the local clock as it stood at that time, daylight saving included.
KVSIG_API long CRTLocalTimeToSec(long stamp);

/// Bytes that a buffer of GetDateAndTime() must have room for.
inline constexpr int dateAndTimeSize = 32;

/// Writes the current local time as "yyyy.mm.dd hh:mm:ss" to `buf` (at least dateAndTimeSize bytes)
/// and returns it; an empty text when the clock cannot be read.
KVSIG_API char* GetDateAndTime(char* buf);

} // namespace kvsig
