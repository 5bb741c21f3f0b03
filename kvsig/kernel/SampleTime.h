#pragma once

#include <cstdint>

namespace kvsig {

/// A time anchor: ties a sample to the clock.
struct SampleTime {
    std::int32_t sample = 0; ///< sample index, from 0, at the recording's rate
    double time = 0.0;       ///< clock time in seconds since midnight of the recording day; may
                             ///< exceed 86400 after midnight. Local wall-clock time, no zone.
};

} // namespace kvsig
