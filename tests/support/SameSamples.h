#pragma once

#include "kvsig/kernel/DataReader.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <span>
#include <vector>

namespace kvsig::test {

/// A reader that takes its samples from chunk reads, wherever they stand in the file.
template <typename Reader>
class FramesOnly : public Reader {
  public:
    using Reader::Reader;

  protected:
    const RecordLayout* recordLayout() override { return nullptr; }
    std::span<const int> channelsStoredWith(int) override { return {}; }
};

/// Reads from both at random places, in every way, and expects the same bits.
inline void expectSameSamples(DataReader& one, DataReader& other, int rounds) {
    std::minstd_rand next(7);
    const auto below = [&next](long end) {
        return static_cast<long>(next() % static_cast<unsigned long>(end));
    };
    const long end = one.sampleCount();
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        for (DataReader* reader : {&one, &other}) {
            if (round % 50 == 17)
                reader->flushPages(round % 100 == 17);
            if (round % 200 == 60)
                reader->setMaxPages(static_cast<short>(1 + round % 7));
            if (round % 200 == 160)
                reader->setPageDuration(0.4 * (1 + round % 9));
        }
        // One channel for a while, then all of them in turn.
        const int channels = one.channelCount();
        const int channel = round % 60 < 30 ? round / 60 % channels : round % channels;
        const long first = below(end + 20) - 10;
        const long last = first + below(round % 10 == 0 ? end : 90);
        const auto count = static_cast<std::size_t>(last - first + 1);
        std::vector<float> values(count, 3.5F), otherValues(count, 3.5F);
        const double gain = 0.5 + round % 3;
        const int accumulate = round % 4 == 3 ? 1 : 0;
        one.getData(channel, first, last, values.data(), gain, accumulate);
        other.getData(channel, first, last, otherValues.data(), gain, accumulate);
        ASSERT_EQ(values, otherValues);
        std::vector<std::int32_t> counts(count), otherCounts(count);
        one.getRawData(channel, first, last, counts.data());
        other.getRawData(channel, first, last, otherCounts.data());
        ASSERT_EQ(counts, otherCounts);
    }
}

} // namespace kvsig::test
