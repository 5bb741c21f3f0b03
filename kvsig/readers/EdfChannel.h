#pragma once

#include "kvsig/readers/EdfHeader.h"

#include <cstdint>
#include <string>

namespace kvsig::edf {

/// What the header says of one channel, parsed.
struct Channel {
    std::string label;
    std::string units;
    bool microvolts = false;
    double physicalMin = 0.0; ///< words count as 0: switch-like channels carry "off" and "on"
    double physicalMax = 0.0;
    bool unknownMin = false; ///< the field is "?"
    bool unknownMax = false;
    std::int32_t digitalMin = 0;
    std::int32_t digitalMax = 0;
    bool oddLimits = false; ///< the text of one of the four is not a number and nothing else
};

[[nodiscard]] Channel channelOf(const Header& header, std::int64_t fileSignal);

} // namespace kvsig::edf
