#include "kvsig/readers/BDFReader.h"

#include "support/LogCapture.h"
#include "support/Opened.h"

namespace kvsig::test {
namespace {

struct Bdf : Opened<BDFReader> {
    using BDFReader::getChunk;
    using Opened::Opened;
};

EdfFile bdf() { return EdfFile().bdf(); }

TEST(BDFReader, SamplesHave24BitsAndFrames32) {
    const std::int32_t counts[] = {-1, -8388608, 8388607, 0, 1, -256};
    EdfFile file = bdf().signal("a", 6).digital("-8388608", "8388607");
    file.physical("-262144", "262143.9");
    Bdf reader(file.samples([&](int, std::int64_t index) { return counts[index]; }));
    ASSERT_TRUE(reader.isOpen);
    EXPECT_EQ(reader.bytesPerSample(), 4);
    EXPECT_THAT(rawOf(reader, 0, 0, 5), testing::ElementsAreArray(counts));
    EXPECT_EQ(valuesOf(reader, 0, 1, 1, 1 / reader.calibration(0)).front(), -8388608.0F);
}

// Two bytes per sample count the records: half again as many as there are, rounded down.
TEST(BDFReader, CountsHalfAgainAsManySamplesAsItHolds) {
    const struct {
        int records;
        std::size_t cut;
        long counted, stored;
    } cases[] = {{4, 0, 24, 16}, {5, 0, 28, 20}, {5, 1, 28, 16}, {1, 0, 4, 4}, {3, 0, 16, 12}};
    for (const auto& c : cases) {
        EdfFile file = bdf().signal("a", 4).records(c.records);
        file.truncate(512 + 12 * static_cast<std::size_t>(c.records) - c.cut);
        Bdf reader(file);
        ASSERT_TRUE(reader.isOpen);
        EXPECT_EQ(reader.maxDataIndex(), c.counted - 1);
        EXPECT_EQ(reader.storedSampleCount(), c.stored);
        const auto raw = rawOf(reader, 0, 0, c.counted - 1);
        for (long i = 0; i < c.counted; ++i)
            EXPECT_EQ(raw[static_cast<std::size_t>(i)], i < c.stored ? file.sample(0, i) : 0) << i;
    }
}

TEST(BDFReader, MixedRatesReadAsFlatZerosAndSaySo) {
    LogCapture log;
    Bdf reader(bdf().signal("a", 4).signal("b", 2).records(6));
    ASSERT_TRUE(reader.isOpen);
    ASSERT_EQ(reader.openFindings().size(), 1U);
    EXPECT_EQ(reader.openFindings()[0].severity, OpenFinding::Severity::warning);
    EXPECT_THAT(reader.openFindings()[0].text, HasSubstr("flat zeros"));
    EXPECT_THAT(log.take(logWarning), ElementsAre(HasSubstr("flat zeros")));
    for (const int channel : {0, 1})
        EXPECT_THAT(rawOf(reader, channel, 0, 23), Each(0));
    EXPECT_EQ(reader.storedSampleCount(), 24);
    EXPECT_EQ(reader.sampleCount(), 36);
    EXPECT_EQ(reader.storedSamplingRate(1), 2.0);

    // All the bytes that were asked for, and nothing behind the real end.
    std::vector<std::int32_t> frames(10, 77);
    auto* buffer = static_cast<short*>(static_cast<void*>(frames.data()));
    EXPECT_EQ(reader.getChunk(6 * 32, buffer, 32), 0);
    EXPECT_THAT(frames, Each(77));
    EXPECT_EQ(reader.getChunk(0, buffer, 36), 36);
    EXPECT_THAT(frames, ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 0, 77));

    ASSERT_TRUE(reader.opens(bdf().signal("a", 4).signal("b", 4)));
    EXPECT_TRUE(reader.openFindings().empty());
}

// Interrupted ones open, unlike EDF's.
TEST(BDFReader, SaysAtOpenHowManySecondsAreMissing) {
    for (const char* kind : {"BDF+C", "BDF+D"}) {
        EdfFile file = bdf().reserved(kind).signal("BDF Annotations", 6).signal("a", 6);
        Bdf reader(file.onsets({"+0", "+1", "+3602"}));
        ASSERT_TRUE(reader.isOpen);
        ASSERT_EQ(reader.openFindings().size(), 1U) << kind;
        EXPECT_THAT(reader.openFindings()[0].text, HasSubstr("leave gaps of 3600 s in all"));
        EXPECT_EQ(reader.openFindings()[0].severity, OpenFinding::Severity::warning);
    }
}

// The record is read straight through: a hidden signal shifts what stands behind it.
TEST(BDFReader, ChannelsAreTakenInFileOrder) {
    EdfFile file = bdf().signal("EDF Annotations", 3).signal("a", 3).signal("b", 3).records(2);
    file.reserved("EDF+C");
    Bdf reader(file);
    ASSERT_EQ(reader.channelCount(), 2);
    EXPECT_STREQ(reader.channelName(0), "a");
    for (const int channel : {0, 1})
        EXPECT_EQ(rawOf(reader, channel, 4, 4).front(), file.sample(channel, 4));

    Bdf plain(bdf().signal("BDF Annotations", 3).signal("a", 3).records(2).reserved("BDF+C"));
    EXPECT_EQ(plain.channelCount(), 2);
}

TEST(BDFReader, AChunkIsARecordOf32BitFrames) {
    EdfFile file = bdf().signal("a", 3).signal("b", 3).records(4);
    Bdf reader(file);
    constexpr int chunkBytes = 3 * 2 * 4;
    std::vector<std::int32_t> frames(7, 77);
    auto* buffer = static_cast<short*>(static_cast<void*>(frames.data()));
    EXPECT_EQ(reader.getChunk(2 * chunkBytes + 7, buffer, chunkBytes), chunkBytes);
    EXPECT_THAT(frames, ElementsAre(file.sample(0, 6), file.sample(1, 6), file.sample(0, 7),
                                    file.sample(1, 7), file.sample(0, 8), file.sample(1, 8), 77));
    for (const long bytePos : {4L * chunkBytes, -1L * chunkBytes, -(1L << 62), 1L << 62})
        EXPECT_EQ(reader.getChunk(bytePos, buffer, chunkBytes), 0) << bytePos;
    EXPECT_EQ(reader.getChunk(0, buffer, chunkBytes - 1), 0);
}

} // namespace
} // namespace kvsig::test
