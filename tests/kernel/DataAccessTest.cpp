#include "support/FakeReader.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace kvsig {
namespace {

using test::FakeChunks;
using test::FakeReader;
using test::FakeRecording;

constexpr float untouched = -12345.0F;

std::vector<float> dataOf(FakeReader& reader, int channel, long first, long last,
                          double gain = 1.0) {
    std::vector<float> values(static_cast<std::size_t>(last - first + 2), untouched);
    EXPECT_EQ(reader.getData(channel, first, last, values.data(), gain, 0), last - first + 1);
    EXPECT_EQ(values.back(), untouched) << "one value too many";
    values.pop_back();
    return values;
}

// Values that no page-wise code computes: one by one, from the recording's own rule.
std::vector<float> expected(const FakeReader& reader, int channel, long first, long last,
                            double scale = 1.0) {
    std::vector<float> values;
    for (long i = first; i <= last; ++i)
        values.push_back(static_cast<float>(reader.rawAt(channel, i) * scale));
    return values;
}

struct Flavour {
    const char* name;
    FakeChunks chunks;
    int sampleBytes;
    double rate;
};

class DataAccess : public testing::TestWithParam<Flavour> {};

TEST_P(DataAccess, WindowsAnywhereHoldTheRecordingsSamples) {
    FakeRecording recording;
    recording.chunks = GetParam().chunks;
    recording.sampleBytes = GetParam().sampleBytes;
    recording.rate = GetParam().rate;
    recording.samples = 997;
    recording.channels[1].calibration = 0.25;
    if (recording.sampleBytes == 4)
        recording.raw = [](int channel, long i) {
            return static_cast<std::int32_t>(i * 2000003 % 2147483647 - 1000000000 + channel);
        };
    FakeReader reader(recording);
    ASSERT_TRUE(reader.open("a"));
    reader.setMaxPages(3);

    EXPECT_EQ(dataOf(reader, 1, 0, 996), expected(reader, 1, 0, 996, 0.25));
    std::mt19937 random(7);
    const auto below = [&](long limit) { return static_cast<long>(random()) % limit; };
    for (int round = 0; round < 400; ++round) {
        const long first = below(1100) - 60;
        const long last = first + below(round % 2 == 0 ? 12 : 400);
        const int channel = static_cast<int>(below(3));
        const double scale = channel == 1 ? 0.25 : 1.0;
        ASSERT_EQ(dataOf(reader, channel, first, last),
                  expected(reader, channel, first, last, scale))
            << channel << ": " << first << ".." << last;
    }
}

INSTANTIATE_TEST_SUITE_P(Flavours, DataAccess,
                         testing::Values(Flavour{"Frames16", FakeChunks::bySample, 2, 10.0},
                                         Flavour{"Frames32", FakeChunks::bySample, 4, 7.9},
                                         Flavour{"Bytes16", FakeChunks::byByte, 2, 16.0},
                                         Flavour{"Bytes32", FakeChunks::byByte, 4, 3.0},
                                         Flavour{"Bytes16Slow", FakeChunks::byByte, 2, 0.3}),
                         [](const auto& param) { return std::string(param.param.name); });

class DataAccessRules : public testing::Test {
  protected:
    DataAccessRules() { EXPECT_TRUE(reader.open("a")); }
    FakeReader reader;
};

class OverlongReader : public FakeReader {
  public:
    long maxDataIndex() override { return 1L << 40; }
};

// Sample indices have 32 bits: a page past them has no place to start.
TEST_F(DataAccessRules, SamplesPast32BitIndicesAreZeros) {
    OverlongReader longReader;
    longReader.file.raw = [](int, long) { return 9; };
    longReader.file.stored = 1L << 41;
    ASSERT_TRUE(longReader.open("a"));
    EXPECT_EQ(dataOf(longReader, 0, 2147483646, 2147483649), (std::vector<float>{9, 9, 0, 0}));
    EXPECT_EQ(dataOf(longReader, 0, 1L << 33, (1L << 33) + 1), std::vector<float>(2, 0.0F));
}

TEST_F(DataAccessRules, EmptyAndImpossibleRangesWriteNothing) {
    constexpr long most = std::numeric_limits<long>::max();
    float value = untouched;
    EXPECT_EQ(reader.getData(0, 5, 4, &value, 1.0, 0), 0);
    EXPECT_EQ(reader.getData(0, most, -most - 1, &value, 1.0, 0), 0);
    EXPECT_EQ(reader.getData(0, -most - 1, most, &value, 1.0, 0), 0) << "no count can tell it";
    EXPECT_EQ(reader.getData(0, 0, 2147483647, &value, 1.0, 0), 0);
    EXPECT_EQ(value, untouched);
}

TEST_F(DataAccessRules, AccumulatingAddsAndLeavesTheRest) {
    reader.file.raw = [](int, long i) { return static_cast<std::int32_t>(i) + 1; };
    std::vector<float> values(4, 100.0F);
    EXPECT_EQ(reader.getData(0, -2, 1, values.data(), 0.5, 1), 4);
    EXPECT_EQ(values, (std::vector<float>{100, 100, 100.5, 101}));
    values.assign(4, 100.0F);
    EXPECT_EQ(reader.getData(0, 998, 1001, values.data(), -1.0, 1), 4);
    EXPECT_EQ(values, (std::vector<float>{-899, -900, 100, 100}));
}

// 200 counts span 10 units: 50 counts above -100 + 100 are (150 * 10 / 200 + 30) = 37.5 units,
// times calibration 2 and gain 3.
TEST_F(DataAccessRules, Type100MapsDigitalToPhysicalLimits) {
    test::FakeChannel& channel = reader.file.channels[1];
    channel.type = std::int16_t{100};
    channel.calibration = 2.0;
    channel.digitalLow = -100;
    channel.digitalHigh = 100;
    channel.physioLow = 30.0;
    channel.physioHigh = 40.0;
    reader.file.raw = [](int, long i) { return i == 0 ? 50 : -100; };
    ASSERT_TRUE(reader.open("a"));
    EXPECT_EQ(dataOf(reader, 1, -1, 1, 3.0), (std::vector<float>{0, 225, 180}));
    EXPECT_EQ(dataOf(reader, 0, 0, 1, 3.0), (std::vector<float>{150, -300})) << "type 1";

    channel.digitalHigh = channel.digitalLow;
    ASSERT_TRUE(reader.open("a"));
    EXPECT_TRUE(std::isinf(dataOf(reader, 1, 0, 0)[0])) << "equal limits";
    EXPECT_TRUE(std::isnan(dataOf(reader, 1, 1, 1)[0])) << "0 / 0";
}

class OddWidthReader : public FakeReader {
  public:
    int bytesPerSample() override { return width; }
    int width = 4;
};

TEST_F(DataAccessRules, WhatIsNot16BitIsReadAs32Bit) {
    OddWidthReader odd;
    odd.file.sampleBytes = 4;
    odd.file.raw = [](int, long i) { return static_cast<std::int32_t>(i) - 2000000000; };
    ASSERT_TRUE(odd.open("a"));
    for (int width : {4, 3, 1, 0, -4}) {
        odd.width = width;
        odd.flushPages(false);
        EXPECT_EQ(dataOf(odd, 2, 49, 51), expected(odd, 2, 49, 51)) << width;
    }
}

TEST_F(DataAccessRules, EitherChunkReadServesTheOther) {
    const auto firstOfFrame = [&](long index) {
        return static_cast<short>(reader.rawAt(0, index));
    };
    short frames[30];
    EXPECT_EQ(reader.getChunk(6 * 20, frames, 60), 60) << "bytes by way of samples";
    EXPECT_EQ(frames[3], firstOfFrame(21));
    reader.file.chunks = FakeChunks::byByte;
    EXPECT_EQ(reader.getSampleChunk(30, frames), 10) << "samples by way of bytes";
    EXPECT_EQ(frames[3], firstOfFrame(31));
    EXPECT_EQ(reader.getSampleChunk(995, frames), 5);
    EXPECT_EQ(reader.getSampleChunk(1000, frames), 0);
}

TEST_F(DataAccessRules, ChunkPositionsOutsideTheIndexRangeHaveNoData) {
    constexpr long most = std::numeric_limits<long>::max();
    short frames[30];
    reader.takeCalls();
    EXPECT_EQ(reader.getChunk(-6, frames, 60), 0);
    EXPECT_EQ(reader.takeCalls("getSampleChunk").size(), 0U);
    reader.file.chunks = FakeChunks::byByte;
    for (long first : {-1L, -most - 1, 2147483648L, most})
        EXPECT_EQ(reader.getSampleChunk(first, frames), 0) << first;
    EXPECT_EQ(reader.takeCalls("getChunk").size(), 0U) << "no byte position tells it";
}

TEST_F(DataAccessRules, AReaderWithoutAnyChunkReadHasNoData) {
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

// A header without a record duration gives an infinite rate.
TEST_F(DataAccessRules, RatesThatAreNoRatesReadWithoutHarm) {
    for (double rate : {std::numeric_limits<double>::infinity(), std::nan(""), -1.0, 0.0}) {
        reader.file.rate = rate;
        ASSERT_TRUE(reader.open("a"));
        const std::vector<float> values = dataOf(reader, 0, -1, 3);
        EXPECT_EQ(values[0], 0.0F);
        // Chunks of one sample, but no page holds a chunk of 2^31 - 1.
        EXPECT_EQ(values[4], std::isinf(rate) ? 0.0F : static_cast<float>(reader.rawAt(0, 3)));
    }
}

} // namespace
} // namespace kvsig
