#include "kvsig/montage/ChannelSum.h"

#include "kvsig/kernel/DataReader.h"
#include "kvsig/util/SampleRange.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>

namespace kvsig {

int addChannel(IDataReader& reader, int channel, long first, long last, float* buf, double scale) {
    if (dynamic_cast<DataReader*>(&reader))
        return reader.getData(channel, first, last, buf, scale, 1);
    const int wanted = rangeLength(first, last);
    // Zeros: a reader may deliver less than it says.
    const std::unique_ptr<float[]> samples(
        new (std::nothrow) float[static_cast<std::size_t>(wanted)]());
    if (!samples)
        return 0;
    const int count =
        std::clamp(reader.getData(channel, first, last, samples.get(), scale, 0), 0, wanted);
    for (int i = 0; i < count; ++i)
        buf[i] += samples[static_cast<std::size_t>(i)];
    return count;
}

} // namespace kvsig
