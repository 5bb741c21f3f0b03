#pragma once

#include "tool/synth/EdfHeader.h"

#include <cstdint>
#include <vector>

namespace kvsig::tool {

/// So many signals at this many samples per second.
struct RateGroup {
    double count = 0;
    double rate = 0;
};

/// What is to be made. Times in seconds, rates and frequencies in hertz.
struct SynthOptions {
    EdfKind kind = EdfKind::edfPlus;
    double duration = 60;
    double recordDuration = 1;
    double channels = 22;
    double rate = 256;
    bool mixed = false;
    std::vector<RateGroup> rates; ///< takes the place of channels, rate and mixed
    std::uint64_t seed = 1;
    StartTime start;
    double mains = 60; ///< 0: no hum
};

} // namespace kvsig::tool
