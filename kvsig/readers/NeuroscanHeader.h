#pragma once

#include "kvsig/readers/HeaderFields.h"

#include <cstdint>

/// The header of a continuous Neuroscan recording.
namespace kvsig::neuroscan {

constexpr std::int64_t headerBytes = 900;
constexpr TextField version{"version", 0, 12};
constexpr NumberField<std::uint32_t> nextFile{"next file", 12};
constexpr NumberField<std::uint32_t> previousFile{"previous file", 16};
constexpr TextField subjectId{"subject id", 21, 20};
constexpr TextField operatorName{"operator", 41, 20};
constexpr TextField doctor{"doctor", 61, 20};
constexpr TextField patientName{"patient name", 121, 20};
constexpr TextField sex{"sex", 143, 1};
constexpr TextField handedness{"handedness", 144, 1};
constexpr TextField medication{"medication", 145, 20};
constexpr TextField sessionLabel{"session label", 205, 20};
constexpr TextField date{"date", 225, 10};
constexpr TextField time{"time", 235, 12};
constexpr NumberField<std::uint16_t> numberOfChannels{"number of channels", 370};
constexpr NumberField<std::uint16_t> commonRate{"sampling rate", 376};
constexpr NumberField<std::uint32_t> numberOfSamples{"number of samples", 864};
constexpr NumberField<std::uint8_t> acquisition{"type of continuous acquisition", 885};
constexpr NumberField<std::uint32_t> eventTable{"offset of the event table", 886};
constexpr NumberField<std::int32_t> channelOffset{"channel offset", 894};

// The record of a channel; they follow the header.
constexpr std::int64_t channelBytes = 75;
constexpr TextField label{"label", 0, 10};
constexpr NumberField<std::uint8_t> bad{"mark of a bad channel", 14};
constexpr NumberField<std::int16_t> baseline{"baseline", 47};
constexpr NumberField<float> sensitivity{"sensitivity", 59};
constexpr NumberField<float> calibrationFactor{"calibration factor", 71};
constexpr double unitsPerMicrovolt = 204.8;

// The trailer of newer files.
constexpr TextField trailerMark{"mark of the trailer", 0, 7};
constexpr NumberField<std::uint8_t> trailerWide{"mark of 32-bit samples", 52};

constexpr std::int64_t fourGiB = std::int64_t{1} << 32; ///< what offsets of 32 bits reach

} // namespace kvsig::neuroscan
