#pragma once

#include "kvsig/kernel/PatientRec.h"
#include "kvsig/readers/CalendarTime.h"
#include "kvsig/readers/NervusContainer.h"

#include <functional>
#include <string>

namespace kvsig::nervus {

/// The moment of a date in days since 1899-12-30; without a date when it is none.
[[nodiscard]] CalendarTime momentOf(double days);

/// Fills in what the section of the patient says; an odd thing in words, or nothing.
[[nodiscard]] std::string readPatient(const HeaderFile& file, const Container& container,
                                      PatientRec& patient);

/// What happened during the recording.
struct Happening {
    double days = 0.0; ///< since 1899-12-30
    double extraSeconds = 0.0;
    double duration = 0.0; ///< seconds
    std::string text;
};

/// Hands out the events in file order until `take` returns false. Says in words what ends their
/// list too early, or nothing.
[[nodiscard]] std::string forEachEvent(const HeaderFile& file, const Container& container,
                                       const std::function<bool(const Happening&)>& take);

} // namespace kvsig::nervus
