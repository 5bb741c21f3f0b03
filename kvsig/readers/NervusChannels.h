#pragma once

#include "kvsig/readers/NervusContainer.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kvsig::nervus {

/// A channel as a packet of the time series describes it.
struct ChannelFacts {
    std::string label;
    std::string reference;
    double rate = 0.0;       ///< hertz
    double resolution = 0.0; ///< microvolts per bit
    double offset = 0.0;
};

struct ChannelTable {
    std::vector<ChannelFacts> channels;
    std::vector<std::string> oddities;
    std::string fault; ///< why there is none; empty when there is
    int error = 0;     ///< the code for it
};

/// The channels of the recording. All packets must say the same but for offsets.
[[nodiscard]] ChannelTable readChannels(const HeaderFile& file, const Container& container);

} // namespace kvsig::nervus
