#pragma once

#include "kvsig/readers/CalendarTime.h"
#include "kvsig/readers/HeaderFields.h"

#include <cstdint>

/// What the files of a Blackrock recording have in common.
namespace kvsig::blackrock {

/// The kinds of file by their first 8 bytes.
inline constexpr TextField fileId{"file id", 0, 8};
inline constexpr const char* bareId = "NEURALSG";      ///< 2.1: no time, no scale, no blocks
inline constexpr const char* blockId = "NEURALCD";     ///< 2.2, 2.3
inline constexpr const char* wideId = "BRSMPGRP";      ///< 3.0
inline constexpr const char* eventId = "NEURALEV";     ///< .nev of 2.1 to 2.3
inline constexpr const char* wideEventId = "BREVENTS"; ///< .nev of 3.0

/// A start time as eight numbers: year, month, day of week, day, hour, minute, second, millisecond.
[[nodiscard]] inline CalendarTime startAt(const HeaderBlock& header, std::int64_t offset) {
    const auto number = [&](std::int64_t index) {
        return static_cast<int>(
            valueOf(header, NumberField<std::uint16_t>{"start", 2 * index}, offset));
    };
    return {number(0), number(1), number(3), number(4), number(5), number(6) + number(7) / 1000.0};
}

} // namespace kvsig::blackrock
