#include "kvsig/kernel/DataPage.h"
#include "support/FakeReader.h"
#include "support/LogCapture.h"

#include <charconv>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace kvsig {
namespace {

using test::FakeChunks;
using test::FakeReader;
using test::FakeRecording;
using test::LogCapture;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double infinity = std::numeric_limits<double>::infinity();

// 10 Hz, chunks of 10 samples, pages of 5 s: 50 samples.
constexpr long pagePoints = 50;

FakeRecording longRecording() {
    FakeRecording recording;
    recording.samples = 200 * pagePoints;
    return recording;
}

class PageCache : public testing::Test {
  protected:
    PageCache() { EXPECT_TRUE(reader.open("a")); }

    float sample(int channel, long index) {
        float value = -1e9F;
        EXPECT_EQ(reader.getData(channel, index, index, &value, 1.0, 0), 1);
        return value;
    }

    // Reads one sample of each page and answers with the numbers of the pages that were fetched
    // from the file for it; -1 stands for a removal of all pages.
    std::vector<long> touch(const std::vector<long>& pages) {
        log.take();
        for (long page : pages) {
            const long index = page * pagePoints + page % pagePoints;
            EXPECT_EQ(sample(1, index), static_cast<float>(reader.rawAt(1, index))) << index;
        }
        constexpr std::string_view read = "DataReader: Read 50 samples at ";
        std::vector<long> fetched;
        for (const std::string& line : log.take()) {
            long start = -pagePoints;
            if (line.starts_with(read))
                std::from_chars(line.data() + read.size(), line.data() + line.size(), start);
            else
                EXPECT_EQ(line, "DataReader: Removing all pages");
            fetched.push_back(start / pagePoints);
        }
        return fetched;
    }

    std::vector<long> removedAllThen(long page) { return {-1, page}; }

    FakeReader reader{longRecording()};
    LogCapture log;
};

TEST_F(PageCache, ForwardReadingRecyclesTheLowestPage) {
    reader.setMaxPages(3);
    EXPECT_THAT(touch({0, 1, 2}), ElementsAre(0, 1, 2));
    EXPECT_THAT(touch({0, 3}), ElementsAre(3)) << "the use of page 0 does not save it";
    EXPECT_THAT(touch({1, 2, 3}), IsEmpty());
    EXPECT_THAT(touch({9, 2, 3}), ElementsAre(9));
}

TEST_F(PageCache, BackwardReadingRecyclesTheHighestPage) {
    reader.setMaxPages(3);
    touch({9, 8, 7});
    EXPECT_THAT(touch({6}), ElementsAre(6));
    EXPECT_THAT(touch({6, 7, 8}), IsEmpty());
    EXPECT_THAT(touch({9}), ElementsAre(9)) << "this one takes the place of page 6";
}

TEST_F(PageCache, GapsAreFilledBeyondTheLimitInOrder) {
    reader.setMaxPages(2);
    touch({0, 9});
    EXPECT_THAT(touch({5, 3, 0, 3, 5, 9}), ElementsAre(5, 3));
    EXPECT_THAT(touch({10}), ElementsAre(10)) << "recycles page 0, the lowest";
    EXPECT_THAT(touch({3, 5, 9, 10}), IsEmpty());
    EXPECT_THAT(touch({0}), (removedAllThen(0))) << "over the limit and before the first page";
    EXPECT_THAT(touch({3}), ElementsAre(3));
}

TEST_F(PageCache, TenTimesTheLimitIsTheEnd) {
    reader.setMaxPages(2);
    touch({0, 100});
    for (long page = 1; page < 20; ++page)
        EXPECT_THAT(touch({page}), ElementsAre(page));
    EXPECT_THAT(touch({0, 19, 100}), IsEmpty()) << "21 pages are held";
    EXPECT_THAT(touch({50}), (removedAllThen(50)));
    EXPECT_THAT(touch({19, 100}), ElementsAre(19, 100)) << "page 50 went with the second";
}

TEST_F(PageCache, ALimitOfNothingStillReads) {
    for (short limit : {short{0}, short{-1}, short{-32768}}) {
        reader.flushPages(false);
        reader.setMaxPages(limit);
        EXPECT_THAT(touch({0}), ElementsAre(0)) << limit;
        EXPECT_THAT(touch({0}), IsEmpty()) << limit;
        EXPECT_THAT(touch({1}), (removedAllThen(1))) << limit;
    }
}

TEST_F(PageCache, PagesAreFetchedChunkByChunk) {
    reader.takeCalls();
    sample(0, 77);
    EXPECT_THAT(reader.takeCalls(),
                ElementsAre("getSampleChunk(50)", "getSampleChunk(60)", "getSampleChunk(70)",
                            "getSampleChunk(80)", "getSampleChunk(90)"));
    reader.file.chunks = FakeChunks::byByte;
    sample(0, 149);
    // 3 channels of 2 bytes: chunks of 60 bytes, from 100 frames on.
    EXPECT_EQ(reader.takeCalls("getChunk").front(), "getChunk(600, 60)");
}

TEST_F(PageCache, TheEndOfTheDataLeavesZerosAndAnIncompletePage) {
    reader.file.stored = 73;
    EXPECT_EQ(sample(1, 72), static_cast<float>(reader.rawAt(1, 72)));
    EXPECT_EQ(sample(1, 73), 0.0F);
    EXPECT_EQ(sample(1, 99), 0.0F);
    EXPECT_THAT(log.take(), ElementsAre("DataReader: Read 23 samples at 50, incomplete page"));
    EXPECT_THAT(reader.takeCalls("getSampleChunk"),
                ElementsAre("getSampleChunk(50)", "getSampleChunk(60)", "getSampleChunk(70)",
                            "getSampleChunk(80)"))
        << "the first chunk of nothing ends the page";
}

TEST_F(PageCache, AShortChunkLeavesZerosEvenOnARecycledPage) {
    reader.setMaxPages(1);
    sample(0, 0);
    reader.file.deliver = [](long first, int available) { return first == 60 ? 3 : available; };
    log.take();
    for (long i = 50; i < 100; ++i)
        EXPECT_EQ(sample(1, i), i >= 63 && i < 70 ? 0.0F : static_cast<float>(reader.rawAt(1, i)));
    EXPECT_THAT(log.take(), ElementsAre("DataReader: Read 43 samples at 50, incomplete page"));
}

TEST_F(PageCache, OnlyAFullPageInsideTheRecordingIsComplete) {
    reader.setSamples(100);
    EXPECT_TRUE(reader.pageAtIndex(99)->complete);
    reader.flushPages(false);
    reader.setSamples(99); // the file holds all 100, the recording claims 99
    reader.file.stored = 1000;
    EXPECT_FALSE(reader.pageAtIndex(98)->complete);
    EXPECT_EQ(reader.pageAtIndex(99), reader.pageAtIndex(98)) << "held pages answer to their end";
    EXPECT_EQ(reader.pageAtIndex(100), nullptr);
    EXPECT_EQ(reader.pageAtIndex(-1), nullptr);
}

TEST_F(PageCache, FlushingDropsAllPagesOrAnIncompleteLastOne) {
    touch({0, 1});
    reader.flushPages(true);
    EXPECT_THAT(touch({0, 1}), IsEmpty()) << "a complete last page is kept";
    reader.flushPages(false);
    reader.flushPages(false);
    EXPECT_THAT(log.take(), ElementsAre("DataReader: Removing all 2 pages",
                                        "DataReader: Removing all 0 pages"));
    reader.flushPages(true);
    reader.setSamples(70);
    EXPECT_EQ(sample(1, 69), static_cast<float>(reader.rawAt(1, 69)));
    reader.setSamples(90);
    EXPECT_EQ(sample(1, 80), 0.0F) << "the page as it was read";
    log.take();
    reader.flushPages(true);
    EXPECT_EQ(sample(1, 80), static_cast<float>(reader.rawAt(1, 80)));
    EXPECT_THAT(log.take(), ElementsAre("DataReader: Removing incomplete page 50-99",
                                        "DataReader: Read 40 samples at 50, incomplete page"));
}

// Chunks that fill more than the step to the next one overlap it; the last one overhangs the page.
TEST_F(PageCache, AChunkLargerThanItsPartFits) {
    reader.file.chunkPts = 25;
    for (FakeChunks chunks : {FakeChunks::bySample, FakeChunks::byByte}) {
        reader.file.chunks = chunks;
        reader.flushPages(false);
        for (long i = 30; i < 120; ++i)
            EXPECT_EQ(sample(2, i), static_cast<float>(reader.rawAt(2, i))) << i;
    }
    EXPECT_THAT(log.take(), Contains("DataReader: Read 50 samples at 50, complete page"));
}

TEST_F(PageCache, LyingCountsAreNotBelieved) {
    reader.file.claim = [](long, int) { return std::numeric_limits<int>::max(); };
    EXPECT_THAT(touch({0, 1}), ElementsAre(0, 1));
    reader.file.claim = [](long, int) { return std::numeric_limits<int>::min(); };
    EXPECT_EQ(sample(1, 100), 0.0F);
    reader.file.chunks = FakeChunks::byByte;
    reader.file.claim = [](long, int) { return 1000000; };
    EXPECT_EQ(sample(1, 150), static_cast<float>(reader.rawAt(1, 150)));
}

TEST_F(PageCache, AnotherLayoutDropsThePagesAnotherDurationDoesNot) {
    touch({0, 1});
    reader.setPageDuration(2.0);
    EXPECT_EQ(reader.getPagePts(), 20);
    EXPECT_THAT(touch({0, 1}), IsEmpty());
    sample(0, 110);
    EXPECT_THAT(log.take(), ElementsAre("DataReader: Read 20 samples at 100, complete page"));

    const auto changesDrop = [&](const char* what) {
        EXPECT_EQ(sample(0, 10), static_cast<float>(reader.rawAt(0, 10))) << what;
        EXPECT_THAT(log.take(), ElementsAre("DataReader: Read 20 samples at 0, complete page"))
            << what;
    };
    reader.file.sampleBytes = 4;
    changesDrop("sample width");
    reader.setChannelCount(2);
    changesDrop("channel count");
    reader.setSamplingRate(5.0);
    changesDrop("chunk size");
}

TEST_F(PageCache, PagesThatMemoryCannotHoldReadAsZeros) {
    // 178956980 samples of 6 bytes are 56 bytes over 2^30.
    reader.setPageDuration(17895698.0);
    ASSERT_EQ(reader.getPagePts(), 178956980);
    std::vector<float> values(100, 5.0F);
    reader.takeCalls();
    EXPECT_EQ(reader.getData(1, 20, 119, values.data(), 1.0, 0), 100);
    EXPECT_EQ(values, std::vector<float>(100, 0.0F));
    EXPECT_THAT(log.take(), ElementsAre("Error allocating memory at DataReader::readPageAtIndex. "
                                        "PagePts=178956980, BytesPerSample=6"));
    EXPECT_THAT(reader.takeCalls(), IsEmpty());
    reader.setPageDuration(5.0);
    EXPECT_THAT(touch({0}), ElementsAre(0)) << "nothing of it is kept";
}

TEST_F(PageCache, PagePointsAreWholeChunks) {
    const struct {
        double rate, seconds;
        int points;
    } cases[] = {
        {256.0, 0.5, 256}, // no less than a chunk
        {199.8, 5.0, 995}, // 999 / 199
        {0.1, 5.0, 1},
        {-10.0, 5.0, 1},
        {std::nan(""), 5.0, 1},
        {256.0, std::nan(""), 256},
        {1000.0, 1e12, 2147483000},
        {infinity, 5.0, 2147483647},
    };
    for (const auto& c : cases) {
        reader.setSamplingRate(c.rate);
        reader.setPageDuration(c.seconds);
        EXPECT_EQ(reader.getPagePts(), c.points) << c.rate << " Hz, " << c.seconds << " s";
    }
    reader.file.minReadPts = -3;
    reader.setSamplingRate(256.0);
    reader.setPageDuration(5.0);
    EXPECT_EQ(reader.getPagePts(), 1280) << "a chunk below 1 counts as 1";
}

TEST(PageBuffer, MoreThanAPageMayTakeIsRefused) {
    PageBuffer buffer;
    ASSERT_TRUE(buffer.reserve(10));
    EXPECT_FALSE(buffer.reserve(maxPageBytes + 1));
    EXPECT_EQ(buffer.capacity(), 0);
    EXPECT_EQ(buffer.data(), nullptr);
    EXPECT_TRUE(buffer.reserve(10)) << "usable again";
}

} // namespace
} // namespace kvsig
