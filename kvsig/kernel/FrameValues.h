#pragma once

#include "kvsig/kernel/DataPage.h"
#include "kvsig/kernel/PageCache.h"

#include <cstdint>

namespace kvsig {

/// From raw counts to the kernel's values: raw * scale, or for channels of type 100
/// ((raw - digitalLow) * (physioHigh - physioLow) / (digitalHigh - digitalLow) + physioLow) *
/// scale. Computed in double precision and rounded to float once.
struct ValueMap {
    bool linear = false; ///< the type-100 form
    double digitalLow = 0.0;
    double digitalSpan = 1.0;
    double physioLow = 0.0;
    double physioSpan = 1.0;
    double scale = 1.0;
};

/// A run of samples of one channel inside a page.
struct PageRun {
    const DataPage& page;
    FrameLayout layout;
    int channel;        ///< inside the layout's channels
    long first;         ///< sample index, inside the page
    std::int64_t count; ///< samples, not past the end of the page
};

/// Stores the run's values in `out`, or adds them to it.
void mapValues(const PageRun& run, const ValueMap& map, bool accumulate, float* out);

/// Copies the run's raw counts.
void copyRaw(const PageRun& run, std::int32_t* out);

} // namespace kvsig
