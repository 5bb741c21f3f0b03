#pragma once

#include "kvsig/kernel/DataReader.h"
#include "support/Opened.h"

#include <climits>
#include <cmath>
#include <deque>
#include <sstream>

namespace kvsig::test {

/// Asks a reader for everything that it could stumble over: texts and numbers inside and outside
/// the channel range, samples inside, across and far outside the ends. A recording that opens must
/// survive this whatever its header says; the sanitizers look on.
inline void readAround(DataReader& reader) {
    const int channels = reader.channelCount();
    const long samples = reader.sampleCount();
    for (const int channel : {INT_MIN, -1, 0, channels / 2, channels - 1, channels, INT_MAX}) {
        const std::string texts = std::string(reader.channelName(channel)) + reader.grid1(channel) +
                                  reader.grid2(channel) + reader.channelUnits(channel);
        static_cast<void>(reader.storedSamplingRate(channel));
        for (const long middle : {0L, samples / 2, samples, reader.storedSampleCount(), 1L << 31}) {
            rawOf(reader, channel, middle - 50, middle + 50);
            valuesOf(reader, channel, middle - 50, middle + 50, std::nan(""));
        }
    }
    for (const double time : {0.0, -1e300, 1e300, HUGE_VAL, std::nan("")}) {
        static_cast<void>(reader.getClockTime(time));
        static_cast<void>(reader.getElapsedTime(time));
    }
    std::ostringstream stream;
    std::deque<ClientEvent> events;
    reader.patientInfo(stream, true);
    reader.testInfo(stream);
    reader.readEvents(events);
}

} // namespace kvsig::test
