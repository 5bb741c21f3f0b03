#include "kvsig/readers/PushableReader.h"

#include "support/Opened.h"
#include "support/RawFile.h"

#include <climits>
#include <numeric>

namespace kvsig::test {
namespace {

// Two channels of 32 Hz: a page is 160 samples.
class Pushable : public testing::Test {
  protected:
    void SetUp() override {
        const RawFile file = RawFile().channels(2);
        ASSERT_TRUE(readAttributes(reader, file.attributes()));
        ASSERT_TRUE(reader.open(dir.write("x.raw", file.bytes()).c_str()));
        std::iota(page.begin(), page.end(), short{1});
    }

    const TempDir dir;
    PushableReader reader;
    std::vector<short> page = std::vector<short>(2 * 160 + 8);
    std::vector<short> chunk = std::vector<short>(2 * 160 + 1, -1);
};

TEST_F(Pushable, APushedPageServesOnce) {
    ASSERT_EQ(reader.openFindings().size(), 1U);
    EXPECT_THAT(reader.openFindings()[0].text, HasSubstr("pushed by the host; none are"));
    EXPECT_EQ(reader.chunkPts(), 160);
    EXPECT_EQ(reader.getSampleChunk(0, chunk.data()), 0) << "nothing pushed, whatever the file has";
    reader.pushBuffer(page.data(), 2 * 2 * 160);
    EXPECT_EQ(rawOf(reader, 1, 320, 321), (std::vector<std::int32_t>{2, 4})) << "for any position";
    EXPECT_EQ(reader.getSampleChunk(320, chunk.data()), 0);
    EXPECT_THAT(rawOf(reader, 1, 0, 9), Each(0));
    reader.flushPages(false);
    reader.pushBuffer(page.data(), 2 * 2 * 160);
    EXPECT_EQ(rawOf(reader, 0, 0, 1), (std::vector<std::int32_t>{1, 3}));

    ASSERT_TRUE(readAttributes(reader, RawFile().channels(2).rate("20").attributes()));
    reader.pushBuffer(page.data(), 4);
    ASSERT_TRUE(reader.open(dir.file("x.raw").c_str()));
    EXPECT_EQ(reader.chunkPts(), 100) << "five seconds of this recording";
    EXPECT_TRUE(reader.openFindings().empty());
}

TEST_F(Pushable, NoMoreThanAPageIsCopiedAndTheRestIsZero) {
    reader.pushBuffer(page.data(), static_cast<int>(2 * page.size()));
    EXPECT_EQ(reader.getSampleChunk(0, chunk.data()), 160);
    EXPECT_EQ(chunk[319], 320);
    EXPECT_EQ(chunk[320], -1);
    for (const int bytes : {6, 0, -1, INT_MIN}) {
        reader.pushBuffer(page.data(), bytes);
        EXPECT_EQ(reader.getSampleChunk(0, chunk.data()), 160);
        EXPECT_EQ(chunk[2], bytes == 6 ? 3 : 0);
        EXPECT_EQ(std::accumulate(chunk.begin(), chunk.end(), 0), bytes == 6 ? 5 : -1);
    }
    reader.pushBuffer(nullptr, 640);
    EXPECT_EQ(reader.getSampleChunk(0, chunk.data()), 0);
}

TEST_F(Pushable, PartsAcceptAnIndexEqualToTheirCount) {
    EXPECT_EQ(reader.fileCount(), 0);
    EXPECT_STREQ(reader.partFileName(0), "");
    const std::string longest(300, 'p');
    reader.addPart("a", 1.99);
    reader.addPart(longest.c_str(), 1e300);
    reader.addPart(nullptr, std::nan(""));
    EXPECT_EQ(reader.fileCount(), 3);
    EXPECT_STREQ(reader.partFileName(0), "a");
    EXPECT_EQ(reader.partFileName(1), longest.substr(0, 260));
    EXPECT_EQ(reader.partSampleCount(0), 63) << "cut to whole samples";
    EXPECT_EQ(reader.partDuration(0), 1.99);
    EXPECT_EQ(reader.partSampleCount(1), LONG_MAX);
    EXPECT_EQ(reader.partSampleCount(2), 0);
    EXPECT_STREQ(reader.partFileName(3), "");
    for (const int outside : {-1, 4, INT_MIN, INT_MAX})
        EXPECT_EQ(reader.partFileName(outside), nullptr);
    for (const int empty : {-1, 3, 4, INT_MAX}) {
        EXPECT_EQ(reader.partSampleCount(empty), 0);
        EXPECT_EQ(reader.partDuration(empty), 0.0);
    }
}

} // namespace
} // namespace kvsig::test
