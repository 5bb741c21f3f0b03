#pragma once

#include "kvsig/readers/FlatRecording.h"
#include "kvsig/readers/HeaderFields.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kvsig::micromed {

/// Appends the notes, flags, events and triggers of the recording's own zones. `samples` is its
/// length.
void listZoneEvents(const FlatRecording& recording, std::int64_t samples,
                    std::vector<FlatEvent>& events);

/// An event of an .EVT file.
struct ClockEvent {
    CalendarTime begin;
    CalendarTime end; ///< without a time when the file gives none
    std::string text;
};

/// The events of an .EVT file in file order; those without a readable begin are left out. `reason`
/// says why the file cannot be read.
[[nodiscard]] std::vector<ClockEvent> readEventFile(const char* path, std::string& reason);

} // namespace kvsig::micromed
