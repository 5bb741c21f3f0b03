#pragma once

#include "kvsig/readers/FlatRecording.h"
#include "kvsig/readers/HeaderFields.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kvsig::micromed {

/// Appends the notes, flags, events and triggers of the recording's own zones; `oddities` gets what
/// is wrong with a zone. `samples` is the recording's length.
void listZoneEvents(const HeaderBlock& header, const FlatRecording& recording, std::int64_t samples,
                    std::vector<FlatEvent>& events, std::vector<std::string>& oddities);

/// An event of an .EVT file.
struct ClockEvent {
    CalendarTime begin;
    CalendarTime end; ///< without a time when the file gives none
    std::string text;
};

/// The events of an .EVT file in file order; `oddities` gets what is left out, and why.
[[nodiscard]] std::vector<ClockEvent> readEventFile(const char* path,
                                                    std::vector<std::string>& oddities);

} // namespace kvsig::micromed
