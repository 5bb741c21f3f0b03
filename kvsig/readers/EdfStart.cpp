#include "kvsig/readers/EdfStart.h"

#include "kvsig/util/NumberText.h"

#include <chrono>

namespace kvsig::edf {
namespace {

// The two pivots differ on purpose: EDF has no rule, EDF+ counts two-digit years from 1985.
std::int64_t fullYear(std::int64_t year, const Header& header) {
    const int pivot = header.kind() == Kind::continuous ? 85 : 90;
    return year + (year < pivot ? 2000 : 1900);
}

bool within(std::int64_t value, std::int64_t least, std::int64_t most) {
    return value >= least && value <= most;
}

} // namespace

std::string fullDate(const Header& header) {
    std::string text = header.text(startDate);
    const DottedTriple date = dottedTriple(text);
    if (!date.complete)
        return text;
    return paddedText(fullYear(date.third, header), 4) + "." + paddedText(date.second, 2) + "." +
           paddedText(date.first, 2);
}

bool hasCalendarDate(const Header& header) {
    const DottedTriple date = dottedTriple(header.view(startDate));
    if (!date.complete || !within(date.first, 1, 31) || !within(date.second, 1, 12) ||
        !within(date.third, 0, 99))
        return false;
    using namespace std::chrono;
    return year_month_day(year(static_cast<int>(fullYear(date.third, header))),
                          month(static_cast<unsigned>(date.second)),
                          day(static_cast<unsigned>(date.first)))
        .ok();
}

bool hasTimeOfDay(const Header& header) {
    const DottedTriple time = dottedTriple(header.view(startTime));
    return time.complete && within(time.first, 0, 23) && within(time.second, 0, 59) &&
           within(time.third, 0, 59);
}

} // namespace kvsig::edf
