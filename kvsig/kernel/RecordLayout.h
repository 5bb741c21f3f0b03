#pragma once

#include "kvsig/util/File.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace kvsig {

/// Where a channel stands in a record, counted in samples.
struct RecordChannel {
    std::int64_t offset = 0;  ///< of its first sample
    std::int64_t samples = 0; ///< how many; not more than the record's points, below 0 none
};

/// The place of every raw sample in a file of equal records, one after another, each holding the
/// channels one after another: little-endian integers, two's complement. A channel with fewer
/// samples than the record has points is stretched by repetition, without interpolation: point j
/// shows sample floor(j * samples / points).
struct RecordLayout {
    const File* file = nullptr;
    std::int64_t dataOffset = 0;    ///< byte position of the first record
    std::int64_t recordSamples = 0; ///< of all the signals in the file, channels or not
    int sampleBytes = 2;            ///< 2 or 3
    std::int64_t points = 0;        ///< of the recording's common rate
    std::vector<RecordChannel> channels;

    [[nodiscard]] std::int64_t recordBytes() const { return recordSamples * sampleBytes; }
    /// The whole records that the file holds as it is now.
    [[nodiscard]] std::int64_t wholeRecords() const {
        return std::max<std::int64_t>(file->size() - dataOffset, 0) / recordBytes();
    }
};

} // namespace kvsig
