#pragma once

#include "kvsig/readers/CalendarTime.h"
#include "kvsig/readers/HeaderFields.h"

#include <cstdint>

/// Where the fields of a Blackrock recording stand.
namespace kvsig::blackrock {

/// The kinds of file by their first 8 bytes.
inline constexpr TextField fileId{"file id", 0, 8};
inline constexpr const char* bareId = "NEURALSG";      ///< 2.1: no time, no scale, no blocks
inline constexpr const char* blockId = "NEURALCD";     ///< 2.2, 2.3
inline constexpr const char* wideId = "BRSMPGRP";      ///< 3.0
inline constexpr const char* eventId = "NEURALEV";     ///< .nev of 2.1 to 2.3
inline constexpr const char* wideEventId = "BREVENTS"; ///< .nev of 3.0

/// NEURALSG.
namespace bare {
inline constexpr NumberField<std::uint32_t> period{"sampling period", 24};
inline constexpr NumberField<std::uint32_t> channelCount{"number of channels", 28};
inline constexpr std::int64_t fixedBytes = 32;
// One for each channel behind them.
inline constexpr NumberField<std::uint32_t> electrode{"electrode id", 0};
inline constexpr std::int64_t channelBytes = 4;
} // namespace bare

/// NEURALCD and BRSMPGRP.
namespace full {
inline constexpr NumberField<std::uint8_t> major{"major version", 8};
inline constexpr NumberField<std::uint8_t> minor{"minor version", 9};
inline constexpr NumberField<std::uint32_t> headerBytes{"number of header bytes", 10};
inline constexpr TextField comment{"comment", 30, 256};
inline constexpr NumberField<std::uint32_t> period{"sampling period", 286};
inline constexpr NumberField<std::uint32_t> ticks{"clock ticks per second", 290};
inline constexpr std::int64_t startOffset = 294;
inline constexpr NumberField<std::uint32_t> channelCount{"number of channels", 310};
inline constexpr std::int64_t fixedBytes = 314;
inline constexpr std::int64_t channelBytes = 66;
// Inside a channel's record.
inline constexpr TextField mark{"mark of a channel", 0, 2};
inline constexpr NumberField<std::uint16_t> electrode{"electrode id", 2};
inline constexpr TextField name{"name", 4, 16};
inline constexpr NumberField<std::int16_t> digitalLow{"least digital value", 22};
inline constexpr NumberField<std::int16_t> digitalHigh{"greatest digital value", 24};
inline constexpr NumberField<std::int16_t> analogueLow{"least analogue value", 26};
inline constexpr NumberField<std::int16_t> analogueHigh{"greatest analogue value", 28};
inline constexpr TextField units{"unit", 30, 16};
} // namespace full

/// A start time as eight numbers: year, month, day of week, day, hour, minute, second, millisecond.
[[nodiscard]] inline CalendarTime startAt(const HeaderBlock& header, std::int64_t offset) {
    const auto number = [&](std::int64_t index) {
        return static_cast<int>(
            valueOf(header, NumberField<std::uint16_t>{"start", 2 * index}, offset));
    };
    return {number(0), number(1), number(3), number(4), number(5), number(6) + number(7) / 1000.0};
}

} // namespace kvsig::blackrock
