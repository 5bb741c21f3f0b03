#include "kvsig/kernel/DataPage.h"
#include "kvsig/kernel/SamplePlanes.h"
#include "support/FakeReader.h"
#include "support/LogCapture.h"
#include "support/Opened.h"

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <span>
#include <string>
#include <vector>

namespace kvsig {
namespace {

using test::FakeReader;
using test::FakeRecording;
using test::rawOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Counts = std::vector<std::int32_t>;

// The first and the third of its channels are stored together. 10 Hz, pages of 50 samples.
class PlanarReader : public FakeReader {
  public:
    explicit PlanarReader(FakeRecording recording) : FakeReader(std::move(recording)) {
        EXPECT_TRUE(open("scripted"));
        takeCalls();
    }

    std::int64_t arriving = 1000; ///< samples that a read brings at most
    std::vector<int> alone{1}, two{0, 2};

    [[nodiscard]] Counts truth(int channel, long first, long last) const {
        Counts counts;
        for (long i = first; i <= last; ++i)
            counts.push_back(rawAt(channel, i));
        return counts;
    }

  protected:
    std::span<const int> channelsStoredWith(int channel) override {
        return channel == 1 ? alone : two;
    }
    std::int64_t readPlanes(int channel, long first, std::int64_t count,
                            const SamplePlanes& planes) override {
        calls.push_back("readPlanes(" + std::to_string(first) + ", " + std::to_string(count) + ")");
        const std::int64_t held = std::min({count, std::int64_t{sampleCount()} - first, arriving});
        for (const int c : channelsStoredWith(channel))
            for (std::int64_t i = 0; i < held; ++i)
                if (bytesPerSample() == 2)
                    static_cast<std::int16_t*>(planes.values)[c * planes.length + i] =
                        static_cast<std::int16_t>(file.raw(c, first + i));
                else
                    static_cast<std::int32_t*>(planes.values)[c * planes.length + i] =
                        file.raw(c, first + i);
        return held;
    }
};

FakeRecording recordingOf(int bytes) {
    FakeRecording recording;
    recording.samples = 120;
    recording.sampleBytes = bytes;
    return recording;
}

TEST(PlanarPages, ReadAChannelWhenItIsAskedFor) {
    for (const int bytes : {2, 4}) {
        PlanarReader reader(recordingOf(bytes));
        EXPECT_EQ(rawOf(reader, 1, 45, 54), reader.truth(1, 45, 54));
        EXPECT_THAT(reader.takeCalls(), ElementsAre("readPlanes(0, 50)", "readPlanes(50, 50)"));
        EXPECT_EQ(rawOf(reader, 2, 0, 49), reader.truth(2, 0, 49));
        EXPECT_THAT(reader.takeCalls(), ElementsAre("readPlanes(0, 50)"));
        EXPECT_EQ(rawOf(reader, 0, 0, 49), reader.truth(0, 0, 49));
        EXPECT_EQ(rawOf(reader, 1, 0, 99), reader.truth(1, 0, 99));
        EXPECT_THAT(reader.takeCalls(), IsEmpty()) << "all of it is there";
        EXPECT_EQ(rawOf(reader, 0, 95, 125), reader.truth(0, 95, 125));
        EXPECT_THAT(reader.takeCalls(), ElementsAre("readPlanes(50, 50)", "readPlanes(100, 50)"));
    }
}

TEST(PlanarPages, HoldZerosForWhatDidNotArriveUntilItDoes) {
    PlanarReader reader(recordingOf(2));
    reader.setMaxPages(1); // the second page takes the first one's memory
    static_cast<void>(rawOf(reader, 0, 0, 49));
    for (const int arriving : {30, 0, -1}) {
        reader.arriving = arriving;
        test::LogCapture log;
        Counts expected = reader.truth(2, 50, 50 + std::max(arriving, 0) - 1);
        expected.resize(50, 0);
        EXPECT_EQ(rawOf(reader, 2, 50, 99), expected);
        EXPECT_THAT(log.take(),
                    Contains("DataReader: Read " + std::to_string(std::max(arriving, 0)) +
                             " samples at 50, incomplete page"));
        reader.arriving = 1000;
        EXPECT_EQ(rawOf(reader, 0, 80, 80), Counts{0});
        reader.flushPages(true);
        EXPECT_EQ(rawOf(reader, 2, 50, 99), reader.truth(2, 50, 99));
        reader.flushPages(false);
    }
}

TEST(PlanarPages, AreNoneForGroupsThatCannotBe) {
    const std::vector<int> groups[] = {{}, {0}, {2, 1}, {-1, 1}, {1, 3}};
    for (const std::vector<int>& group : groups) {
        PlanarReader reader(recordingOf(2));
        reader.alone = group;
        EXPECT_EQ(rawOf(reader, 1, 20, 80), reader.truth(1, 20, 80));
        EXPECT_EQ(rawOf(reader, 2, 20, 80), reader.truth(2, 20, 80));
    }
}

// A page of this length can be had of what is shown, but not of frames with their chunks.
TEST(PlanarPages, ThatCannotBecomeFramesAreGone) {
    PlanarReader reader(recordingOf(2));
    EXPECT_EQ(rawOf(reader, 1, 0, 49), reader.truth(1, 0, 49));
    reader.setPageDuration(1e8);
    EXPECT_EQ(reader.pageAtIndex(7), nullptr);
    EXPECT_EQ(rawOf(reader, 1, 0, 49), Counts(50, 0));
    reader.setPageDuration(5.0);
    EXPECT_EQ(rawOf(reader, 1, 0, 49), reader.truth(1, 0, 49));
}

// A host's reader that asks for a page gets frames, and getData() goes on from them.
TEST(PlanarPages, BecomeFramesWhereThoseAreWanted) {
    PlanarReader reader(recordingOf(2));
    static_cast<void>(rawOf(reader, 1, 0, 9));
    const DataPage* page = reader.pageAtIndex(7);
    ASSERT_NE(page, nullptr);
    const auto* frames =
        static_cast<const std::int16_t*>(static_cast<const void*>(page->buffer.data()));
    for (int c = 0; c < 3; ++c)
        EXPECT_EQ(frames[7 * 3 + c], reader.rawAt(c, 7)) << c;
    reader.takeCalls();
    EXPECT_EQ(rawOf(reader, 1, 0, 49), reader.truth(1, 0, 49));
    EXPECT_THAT(reader.takeCalls(), IsEmpty());
}

} // namespace
} // namespace kvsig
