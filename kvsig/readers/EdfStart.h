#pragma once

#include "kvsig/readers/EdfHeader.h"

#include <string>

namespace kvsig::edf {

/// The start date, dd.mm.yy in the file, as yyyy.mm.dd; what is no date stays as it is.
[[nodiscard]] std::string fullDate(const Header& header);

/// Start date and time are such a day and hh.mm.ss of one.
[[nodiscard]] bool hasCalendarDate(const Header& header);
[[nodiscard]] bool hasTimeOfDay(const Header& header);

} // namespace kvsig::edf
