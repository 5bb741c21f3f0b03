#pragma once

#include "kvsig/readers/CalendarTime.h"
#include "kvsig/readers/HeaderFile.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace kvsig::blackrock {

/// The header of an event file (.nev).
struct EventHeader {
    bool wideStamps = false; ///< 64-bit time stamps (3.0)
    std::int64_t headerBytes = 0;
    std::int64_t packetBytes = 0;
    double ticksPerSecond = 0.0;
    CalendarTime start;
    std::map<std::uint32_t, double> nanovoltsPerBit; ///< by electrode
    std::map<std::uint32_t, std::string> labels;     ///< by electrode
};

/// The header of the file; nothing, with `reason` in words, when it is no sound event file.
[[nodiscard]] std::optional<EventHeader> readEventHeader(const HeaderFile& file,
                                                         std::string& reason);

/// Hands out the digital and text events in file order, each with its time in seconds by the
/// recorder's clock, until `take` returns false. Spikes and the rest are passed over.
void forEachEvent(const HeaderFile& file, const EventHeader& header,
                  const std::function<bool(double seconds, const std::string& text)>& take);

} // namespace kvsig::blackrock
