#pragma once

#include "kvsig/kernel/RecordLayout.h"

#include <cstddef>
#include <cstdint>
#include <span>

/// Data records, signal after signal, turned into frames: sample index major, channel minor.
/// Pure functions. A source that does not lie in the record reads as zeros.
namespace kvsig {

/// Little-endian 16-bit samples. Writes `points` frames of channels.size() values. A channel with
/// fewer samples than `points` is stretched by repetition, without interpolation.
void demuxRecord16(std::span<const std::byte> record, std::span<const RecordChannel> channels,
                   std::int64_t points, std::int16_t* frames);

/// Little-endian 24-bit samples, `channels` runs of `points` samples from the record's first byte.
void demuxRecord24(std::span<const std::byte> record, std::int64_t channels, std::int64_t points,
                   std::int32_t* frames);

} // namespace kvsig
