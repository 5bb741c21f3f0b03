#include "support/FakeReader.h"

#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace kvsig {
namespace {

using test::FakeChunks;
using test::FakeReader;

constexpr float untouched = -12345.0F;

std::vector<float> dataOf(FakeReader& reader, int channel, long first, long last) {
    std::vector<float> values(static_cast<std::size_t>(last - first + 2), untouched);
    EXPECT_EQ(reader.getData(channel, first, last, values.data(), 1.0, 0), last - first + 1);
    EXPECT_EQ(values.back(), untouched) << "one value too many";
    values.pop_back();
    return values;
}

class DataAccess : public testing::Test {
  protected:
    DataAccess() { EXPECT_TRUE(reader.open("a")); }
    FakeReader reader;
};

// A reader may take its answers from elsewhere than its base.
class OverridingReader : public FakeReader {
  public:
    long maxDataIndex() override { return 1L << 40; }
    int bytesPerSample() override { return width; }
    int width = 4;
};

// Sample indices have 32 bits: a page past them has no place to start.
TEST_F(DataAccess, SamplesPast32BitIndicesAreZeros) {
    OverridingReader longReader;
    longReader.file.sampleBytes = 4;
    longReader.file.raw = [](int, long) { return 9; };
    longReader.file.stored = 1L << 41;
    ASSERT_TRUE(longReader.open("a"));
    EXPECT_EQ(dataOf(longReader, 0, 2147483646, 2147483649), (std::vector<float>{9, 9, 0, 0}));
    EXPECT_EQ(dataOf(longReader, 0, 1L << 33, (1L << 33) + 1), std::vector<float>(2, 0.0F));
}

TEST_F(DataAccess, EmptyAndImpossibleRangesWriteNothing) {
    float value = untouched;
    for (const auto& [first, last] : {std::pair{5L, 4L}, {LONG_MAX, LONG_MIN}, {0L, 2147483647L}})
        EXPECT_EQ(reader.getData(0, first, last, &value, 1.0, 0), 0) << first << ".." << last;
    EXPECT_EQ(value, untouched);
}

TEST_F(DataAccess, AccumulatingAddsAndLeavesTheRest) {
    reader.file.raw = [](int, long i) { return static_cast<std::int32_t>(i) + 1; };
    std::vector<float> values(4, 100.0F);
    EXPECT_EQ(reader.getData(0, -2, 1, values.data(), 0.5, 1), 4);
    EXPECT_EQ(values, (std::vector<float>{100, 100, 100.5, 101}));
    values.assign(4, 100.0F);
    EXPECT_EQ(reader.getData(0, 998, 1001, values.data(), -1.0, 1), 4);
    EXPECT_EQ(values, (std::vector<float>{-899, -900, 100, 100}));
}

TEST_F(DataAccess, Type100WithoutADigitalRangeHasNoValues) {
    test::FakeChannel& channel = reader.file.channels[1];
    channel.type = std::int16_t{100};
    channel.digitalLow = channel.digitalHigh = -100;
    reader.file.raw = [](int, long i) { return i == 0 ? 50 : -100; };
    ASSERT_TRUE(reader.open("a"));
    const std::vector<float> values = dataOf(reader, 1, -1, 1);
    EXPECT_EQ(values[0], 0.0F) << "outside";
    EXPECT_TRUE(std::isinf(values[1]));
    EXPECT_TRUE(std::isnan(values[2])) << "0 / 0";
}

TEST_F(DataAccess, WhatIsNot16BitIsReadAs32Bit) {
    OverridingReader odd;
    odd.file.sampleBytes = 4;
    odd.file.raw = [](int, long i) { return static_cast<std::int32_t>(i) - 2000000000; };
    ASSERT_TRUE(odd.open("a"));
    for (int width : {4, 3, 1, 0, -4}) {
        odd.width = width;
        odd.flushPages(false);
        const std::vector<float> values = dataOf(odd, 2, 49, 51);
        for (long i = 49; i <= 51; ++i)
            EXPECT_EQ(values[static_cast<std::size_t>(i - 49)], static_cast<float>(odd.rawAt(2, i)))
                << width;
    }
}

TEST_F(DataAccess, EitherChunkReadServesTheOther) {
    const auto firstOfFrame = [&](long index) {
        return static_cast<short>(reader.rawAt(0, index));
    };
    short frames[30];
    EXPECT_EQ(reader.getChunk(6 * 20, frames, 60), 60) << "bytes by way of samples";
    EXPECT_EQ(frames[3], firstOfFrame(21));
    EXPECT_EQ(reader.getChunk(-6, frames, 60), 0);
    reader.file.chunks = FakeChunks::byByte;
    EXPECT_EQ(reader.getSampleChunk(30, frames), 10) << "samples by way of bytes";
    EXPECT_EQ(frames[3], firstOfFrame(31));
    EXPECT_EQ(reader.getSampleChunk(995, frames), 5);
    EXPECT_EQ(reader.getSampleChunk(1000, frames), 0);
    reader.takeCalls();
    for (const long first : {-1L, LONG_MIN, 2147483648L, LONG_MAX})
        EXPECT_EQ(reader.getSampleChunk(first, frames), 0) << first;
    EXPECT_EQ(reader.takeCalls("getChunk").size(), 0U) << "no byte position tells it";
}

TEST_F(DataAccess, AReaderWithoutAnyChunkReadHasNoData) {
    reader.file.chunks = FakeChunks::neither;
    short frames[30];
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(reader.getSampleChunk(0, frames), 0);
        EXPECT_EQ(reader.getChunk(0, frames, 60), 0);
    }
    EXPECT_EQ(dataOf(reader, 0, 0, 3), std::vector<float>(4, 0.0F));
    reader.setChannelCount(0);
    EXPECT_EQ(reader.getSampleChunk(0, frames), 0) << "frames of no bytes";
}

} // namespace
} // namespace kvsig
