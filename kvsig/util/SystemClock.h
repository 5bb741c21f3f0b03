#pragma once

#include <cstdint>
#include <optional>

/// The system's calendar and time zone. Stamps are seconds since 1970-01-01 00:00 UTC.
namespace kvsig {

struct CalendarTime {
    std::int64_t year = 0;
    int month = 0; ///< from 1
    int day = 0;   ///< from 1
    int hour = 0, minute = 0, second = 0;
};

/// Nothing when the date is beyond the calendar.
[[nodiscard]] std::optional<CalendarTime> utcTime(std::int64_t stamp);
/// By the rules of the system's zone at that time.
[[nodiscard]] std::optional<CalendarTime> localTime(std::int64_t stamp);

/// Seconds that local standard time, without daylight saving, is ahead of UTC now.
[[nodiscard]] std::optional<std::int64_t> standardOffset();

[[nodiscard]] std::int64_t currentStamp();

} // namespace kvsig
