#pragma once

#include "kvsig/kernel/OpenFinding.h"
#include "kvsig/readers/EdfChannel.h"
#include "kvsig/readers/EdfHeader.h"
#include "kvsig/util/File.h"

#include <cstdint>
#include <span>
#include <vector>

namespace kvsig::edf {

/// A file whose header was read.
struct Opened {
    const File& file;
    const Header& header;
    std::span<const Channel> channels;
    double samplingRate = 0.0; ///< the common one, hertz
    int sampleBytes = 2;
    std::int64_t frameBytes = 0; ///< of a data record at the common rate
};

/// What opening notices without failing: numbers that are read in part, dates and times that are
/// none, rates and sizes that mean nothing, gaps between data records.
[[nodiscard]] std::vector<OpenFinding> openingFindings(const Opened& opened);

} // namespace kvsig::edf
