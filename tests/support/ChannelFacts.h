#pragma once

#include "kvsig/kernel/IDataReader.h"

#include <sstream>
#include <string>

namespace kvsig::test {

/// Name and grids of a channel: "Fp1-Ref|Fp1|Ref".
inline std::string namesOf(IDataReader& reader, int channel) {
    return std::string(reader.channelName(channel)) + '|' + reader.grid1(channel) + '|' +
           reader.grid2(channel);
}

/// All that a reader says of a channel, to compare with another's: names, types, units,
/// calibration, physical and digital range, zero flag and number of samples.
inline std::string factsOf(IDataReader& reader, int channel) {
    std::ostringstream out;
    out << namesOf(reader, channel) << '|' << reader.channelType(channel) << '|'
        << reader.channelSubType(channel) << '|' << reader.channelUnits(channel) << '|'
        << reader.calibration(channel) << '|' << reader.physioLow(channel) << '|'
        << reader.physioHigh(channel) << '|' << reader.digitalLow(channel) << '|'
        << reader.digitalHigh(channel) << '|' << reader.zeroChannel(channel) << '|'
        << reader.channelSampleCount(channel);
    return out.str();
}

} // namespace kvsig::test
