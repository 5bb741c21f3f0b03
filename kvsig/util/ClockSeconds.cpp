#include "kvsig/util/ClockSeconds.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/SystemClock.h"
#include "kvsig/util/Text.h"

#include <optional>
#include <string>

namespace kvsig {
namespace {

long secondsOfDay(const std::optional<CalendarTime>& time) {
    return time ? time->second + 60L * (time->minute + 60L * time->hour) : 0L;
}

} // namespace

long GMTimeToSec(long stamp) { return secondsOfDay(utcTime(stamp)); }

long LocalTimeToSec(long stamp) {
    const std::optional<std::int64_t> offset = standardOffset();
    // Also keeps the sum in range: stamps with a date are far from the ends of 64 bits.
    if (!offset || !utcTime(stamp))
        return 0;
    return secondsOfDay(utcTime(stamp + *offset));
}

long CRTLocalTimeToSec(long stamp) { return secondsOfDay(localTime(stamp)); }

char* GetDateAndTime(char* buf) {
    std::string text;
    if (const std::optional<CalendarTime> now = localTime(currentStamp())) {
        text = paddedText(now->year, 4) + "." + paddedText(now->month, 2) + "." +
               paddedText(now->day, 2) + " " + paddedText(now->hour, 2) + ":" +
               paddedText(now->minute, 2) + ":" + paddedText(now->second, 2);
    }
    copyText(buf, dateAndTimeSize, text);
    return buf;
}

} // namespace kvsig
