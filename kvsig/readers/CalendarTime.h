#pragma once

#include <cstdint>
#include <string>

namespace kvsig {

/// A moment by the wall clock, as headers give it; month 0 when the date is unknown.
struct CalendarTime {
    int year = 0; ///< in full
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    double second = 0.0;

    /// Whether the calendar has the day.
    [[nodiscard]] bool hasDate() const;
    /// Whether the clock has the time.
    [[nodiscard]] bool hasTime() const;
    /// "yyyy.mm.dd"; empty without a date.
    [[nodiscard]] std::string dateText() const;
    /// "hh:mm:ss", whole seconds; empty without a time.
    [[nodiscard]] std::string timeText() const;
    /// Seconds since midnight; 0 without a time.
    [[nodiscard]] double secondOfDay() const;
    /// Days since 1970-01-01; 0 without a date.
    [[nodiscard]] std::int64_t dayNumber() const;
    /// Seconds since midnight of the day of `start`: how the time base counts. Without a date on
    /// both sides, since midnight of the own day.
    [[nodiscard]] double secondsFromDayOf(const CalendarTime& start) const;
    /// The moment so many seconds later; itself without a time. Without a date there is none then.
    [[nodiscard]] CalendarTime after(double seconds) const;
    /// The moment `second` seconds after midnight of the day, counted from 1970-01-01.
    [[nodiscard]] static CalendarTime onDay(std::int64_t dayNumber, double second);
};

} // namespace kvsig
