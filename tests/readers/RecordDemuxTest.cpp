#include "kvsig/readers/RecordDemux.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

namespace kvsig {
namespace {

using Values = std::vector<std::int32_t>;

std::vector<std::byte> bytesOf(const std::vector<int>& values) {
    std::vector<std::byte> bytes;
    for (const int value : values)
        bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

// 16-bit samples 1, 2, 3 ...
std::vector<std::byte> countingRecord(int samples) {
    std::vector<std::byte> bytes;
    for (int i = 1; i <= samples; ++i) {
        bytes.push_back(static_cast<std::byte>(i & 0xFF));
        bytes.push_back(static_cast<std::byte>(i >> 8));
    }
    return bytes;
}

constexpr std::int32_t untouched = 0x5A5A;

// The frames, and one value after them that must stay untouched.
Values framesOf(const std::vector<std::byte>& record, const std::vector<RecordChannel>& channels,
                std::int64_t points) {
    std::vector<std::int16_t> out(channels.size() * static_cast<std::size_t>(points) + 1,
                                  std::int16_t{untouched});
    demuxRecord16(record, channels, points, out.data());
    EXPECT_EQ(out.back(), untouched);
    return {out.begin(), out.end() - 1};
}

TEST(RecordDemux, FramesHoldOneLittleEndianValueOfEachChannel) {
    const auto record =
        bytesOf({0x34, 0x12, 0xFF, 0xFF, 0x00, 0x80, 0xFF, 0x7F, 0x01, 0x00, 0xFE, 0xFF});
    EXPECT_EQ(framesOf(record, {{0, 2}, {4, 2}}, 2), (Values{0x1234, 1, -1, -2}));
    EXPECT_EQ(framesOf(record, {{2, 2}, {0, 2}, {3, 2}}, 2),
              (Values{-32768, 0x1234, 32767, 32767, -1, 1}));
}

// By repetition alone: the next input is taken as soon as its share of the record begins.
TEST(RecordDemux, SlowChannelsAreStretchedByRepetition) {
    for (int points = 1; points <= 40; ++points)
        for (int samples = 1; samples <= points; ++samples) {
            Values expected;
            for (int i = 0, j = 0; i < samples; ++i)
                for (; j * samples < (i + 1) * points; ++j)
                    expected.push_back(i + 3); // two samples of another signal stand before
            ASSERT_EQ(expected.size(), static_cast<std::size_t>(points));
            ASSERT_EQ(framesOf(countingRecord(samples + 2), {{2, samples}}, points), expected)
                << samples << " to " << points;
        }
    EXPECT_EQ(framesOf(countingRecord(6), {{0, 4}, {4, 2}}, 4), (Values{1, 5, 2, 5, 3, 6, 4, 6}));
}

TEST(RecordDemux, SourcesOutsideTheRecordReadAsZeros) {
    const auto record = countingRecord(4);
    const struct {
        RecordChannel channel;
        Values expected;
    } cases[] = {
        {{2, 4}, {3, 4, 0, 0}},  {{1000000000000, 4}, {0, 0, 0, 0}},
        {{-1, 4}, {0, 0, 0, 0}}, {{3, 2}, {4, 4, 0, 0}},
        {{0, 0}, {0, 0, 0, 0}},  {{4, -4}, {0, 0, 0, 0}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(framesOf(record, {c.channel}, 4), c.expected)
            << c.channel.offset << ", " << c.channel.samples;
    EXPECT_EQ(framesOf({}, {{0, 2}}, 2), (Values{0, 0}));
    EXPECT_EQ(framesOf(bytesOf({1, 0, 2}), {{0, 2}}, 2), (Values{1, 0})); // half a sample
}

TEST(RecordDemux, Reads24BitTwosComplementStraightThrough) {
    const auto record = bytesOf({0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x80, 0xFF, 0xFF, 0x7F, //
                                 0x56, 0x34, 0x12, 0x01, 0x00, 0x00, 0x00, 0xFF, 0xFF});
    Values frames(7, untouched);
    demuxRecord24(record, 2, 3, frames.data());
    EXPECT_EQ(frames, (Values{-1, 0x123456, -8388608, 1, 8388607, -256, untouched}));

    Values beyond(9, untouched); // two samples and two stray bytes for four
    demuxRecord24(std::span(record).first(8), 2, 4, beyond.data());
    EXPECT_EQ(beyond, (Values{-1, 0, -8388608, 0, 0, 0, 0, 0, untouched}));
}

} // namespace
} // namespace kvsig
