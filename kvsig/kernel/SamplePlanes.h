#pragma once

#include <cstdint>

namespace kvsig {

/// Room for raw samples, those of each channel together: sample i of channel c goes to
/// values[c * length + i].
struct SamplePlanes {
    void* values = nullptr;  ///< signed integers of 16 bits, or 32 as bytesPerSample() says
    std::int64_t length = 0; ///< values of a channel
};

} // namespace kvsig
