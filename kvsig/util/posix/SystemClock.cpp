#include "kvsig/util/SystemClock.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace kvsig {
namespace {

constexpr std::int64_t daySeconds = 86400;

using Breakdown = std::tm* (*)(const std::time_t*, std::tm*);

std::optional<std::tm> brokenDown(std::int64_t stamp, Breakdown breakdown) {
    // localtime_r alone need not notice a changed TZ.
    ::tzset();
    std::tm parts{};
    const auto time = static_cast<std::time_t>(stamp);
    if (!std::in_range<std::time_t>(stamp) || !breakdown(&time, &parts))
        return std::nullopt;
    return parts;
}

std::optional<CalendarTime> calendarTime(std::int64_t stamp, Breakdown breakdown) {
    const std::optional<std::tm> parts = brokenDown(stamp, breakdown);
    if (!parts)
        return std::nullopt;
    return CalendarTime{std::int64_t{parts->tm_year} + 1900,
                        parts->tm_mon + 1,
                        parts->tm_mday,
                        parts->tm_hour,
                        parts->tm_min,
                        parts->tm_sec};
}

} // namespace

std::optional<CalendarTime> utcTime(std::int64_t stamp) { return calendarTime(stamp, ::gmtime_r); }

std::optional<CalendarTime> localTime(std::int64_t stamp) {
    return calendarTime(stamp, ::localtime_r);
}

// The lowest offset of the coming year, as zones move their clocks forward for summer. Which of the
// two is flagged as daylight saving does not tell: Irish winter time is flagged in some versions of
// the zone data. A zone that never is flagged keeps today's offset. Steps of two weeks miss no
// season: the shortest, the month of Ramadan in Morocco, is longer.
std::optional<std::int64_t> standardOffset() {
    const std::int64_t now = currentStamp();
    const std::optional<std::tm> today = brokenDown(now, ::localtime_r);
    if (!today)
        return std::nullopt;
    std::int64_t lowest = today->tm_gmtoff;
    bool hasSeasons = false;
    for (int days = 0; days <= 366; days += 14) {
        const std::tm then = brokenDown(now + days * daySeconds, ::localtime_r).value_or(*today);
        lowest = std::min<std::int64_t>(lowest, then.tm_gmtoff);
        hasSeasons = hasSeasons || then.tm_isdst > 0;
    }
    return hasSeasons ? lowest : today->tm_gmtoff;
}

std::int64_t currentStamp() { return std::time(nullptr); }

} // namespace kvsig
