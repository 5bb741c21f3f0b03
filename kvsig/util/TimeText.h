#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

/// Reads "[[d:]h:]m:s[.fraction]" or a plain number of seconds; at most 32 characters are looked
/// at. The fields are read from the right, so a two-field text is minutes and seconds.
KVSIG_API double TimeToReal(const char* text);

/// Bytes that a buffer of RealToTime() must have room for.
inline constexpr int realToTimeSize = 64;

/// Writes seconds as a clock text into `buf` (at least realToTimeSize bytes) and returns it:
/// "hh:mm", "hh:mm:ss" or "hh:mm:ss.hh". Hours are not wrapped unless `withDays`, which puts "d:"
/// in front. A fraction above 0.995 rounds up to the next whole second, all others are cut. A
/// negative time gets a leading '-'. A time beyond 64-bit seconds is held at that limit, NaN is 0.
KVSIG_API char* RealToTime(double seconds, char* buf, bool withSeconds, bool withHundredths,
                           bool withDays);

/// Library-wide: RealToTime() writes plain seconds with two decimals instead of clock texts.
KVSIG_API void SetPlainSeconds(bool plain);

} // namespace kvsig
