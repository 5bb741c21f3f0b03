#pragma once

#include "kvsig/kernel/DataReader.h"
#include "support/TempDir.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace kvsig::test {

/// A recording made for a reader, and what the reader must make of it.
struct SampleRecording {
    std::string bytes;
    std::string fileName;
    std::vector<std::size_t> boundaries; ///< offsets at which a field of the header begins
    int channels = 0;
    double samplingRate = 0.0;
    long sampleCount = 0;       ///< as the kernel counts
    long storedSampleCount = 0; ///< from here on samples read as zeros
    long chunkEnd = 0;          ///< from here on a chunk read finds nothing; sampleCount when 0
    double startClock = 0.0;    ///< seconds since midnight
    double pauseAt = 0.0;       ///< seconds of samples before the recorder's only pause
    double pause = 0.0;         ///< seconds; 0 without
    std::string attributes;     ///< read before the file is opened, unless it is empty
    std::vector<std::pair<std::string, std::string>> companions; ///< names and bytes
    std::string otherDoor; ///< the companion by which it opens too; empty: none
    /// The raw count of a stored sample.
    std::function<std::int32_t(int channel, long index)> raw;

    /// Writes all files and returns the path of the recording.
    [[nodiscard]] std::string writeTo(const TempDir& dir) const {
        for (const auto& [name, content] : companions)
            dir.write(name, content);
        return dir.write(fileName, bytes);
    }
};

/// A format in the compliance kit. A new format adds its rows and nothing else.
struct ReaderRow {
    const char* name;
    int type;
    std::uint32_t miscFlags;
    std::function<SampleRecording()> sample;
    std::function<std::unique_ptr<DataReader>()> reader;
    std::function<std::unique_ptr<DataReader>()> framedReader; ///< takes all samples from chunks
};

inline void PrintTo(const ReaderRow& row, std::ostream* stream) { *stream << row.name; }

/// The rows of the EDF family.
std::vector<ReaderRow> edfRows();
/// The rows of recordings that an attribute file describes.
std::vector<ReaderRow> rawRows();
/// The rows of formats that stand on FlatReader.
std::vector<ReaderRow> flatRows();

} // namespace kvsig::test
