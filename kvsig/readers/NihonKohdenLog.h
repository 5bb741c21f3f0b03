#pragma once

#include "kvsig/readers/CalendarTime.h"

#include <string>
#include <vector>

namespace kvsig::nk {

/// A line of the event file.
struct LogEntry {
    std::string text;
    double elapsed = 0.0;  ///< seconds of recorded time, with the fraction
    double fraction = 0.0; ///< seconds, of `elapsed`
    CalendarTime clock;    ///< in whole seconds; without a date when unknown
};

/// The entries of an event file (.LOG) in file order, as far as they are there. `faults` gets a
/// sentence for whatever is left out.
[[nodiscard]] std::vector<LogEntry> readLog(const char* path, std::vector<std::string>& faults);

} // namespace kvsig::nk
