#include "kvsig/readers/CalendarTime.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace kvsig {
namespace {

constexpr double secondsPerDay = 86400.0;

std::chrono::year_month_day calendarDay(const CalendarTime& time) {
    using namespace std::chrono;
    return year_month_day(year(time.year), month(static_cast<unsigned>(time.month)),
                          day(static_cast<unsigned>(time.day)));
}

} // namespace

bool CalendarTime::hasDate() const {
    return year >= 1 && year <= 9999 && month >= 1 && day >= 1 && calendarDay(*this).ok();
}

bool CalendarTime::hasTime() const {
    return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0.0 && second < 61.0;
}

std::string CalendarTime::dateText() const {
    return hasDate() ? paddedText(year, 4) + "." + paddedText(month, 2) + "." + paddedText(day, 2)
                     : "";
}

std::string CalendarTime::timeText() const {
    return hasTime() ? paddedText(hour, 2) + ":" + paddedText(minute, 2) + ":" +
                           paddedText(saturate<int>(second), 2)
                     : "";
}

double CalendarTime::secondOfDay() const {
    return hasTime() ? 3600.0 * hour + 60.0 * minute + second : 0.0;
}

std::int64_t CalendarTime::dayNumber() const {
    return hasDate() ? std::chrono::sys_days(calendarDay(*this)).time_since_epoch().count() : 0;
}

double CalendarTime::secondsFromDayOf(const CalendarTime& start) const {
    const bool dated = hasDate() && start.hasDate();
    const std::int64_t days = dated ? dayNumber() - start.dayNumber() : 0;
    return static_cast<double>(days) * secondsPerDay + secondOfDay();
}

CalendarTime CalendarTime::after(double seconds) const {
    if (!hasTime() || !std::isfinite(seconds))
        return *this;
    const double later = secondOfDay() + seconds;
    const double days = std::floor(later / secondsPerDay);
    CalendarTime moment = onDay(dayNumber() + saturate<std::int32_t>(days),
                                std::max(later - days * secondsPerDay, 0.0));
    if (!hasDate())
        moment.year = year, moment.month = month, moment.day = day;
    return moment;
}

CalendarTime CalendarTime::onDay(std::int64_t dayNumber, double second) {
    const std::chrono::sys_days date{std::chrono::days{dayNumber}};
    const std::chrono::year_month_day parts{date};
    const auto minutes = saturate<int>(second / 60.0);
    return {static_cast<int>(parts.year()),
            static_cast<int>(static_cast<unsigned>(parts.month())),
            static_cast<int>(static_cast<unsigned>(parts.day())),
            minutes / 60,
            minutes % 60,
            second - 60.0 * minutes};
}

} // namespace kvsig
