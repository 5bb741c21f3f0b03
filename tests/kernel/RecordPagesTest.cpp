#include "kvsig/kernel/RecordLayout.h"
#include "kvsig/util/File.h"
#include "support/FakeReader.h"
#include "support/TempDir.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kvsig {
namespace {

struct RecordReader : test::FakeReader {
    RecordLayout layout;
    const RecordLayout* recordLayout() override { return &layout; }
};

// A record may hold far more than its channels show. Pages of such records would cost what the file
// says, not what is looked at.
TEST(RecordPages, OfRecordsMuchLargerThanTheirFramesAreFrames) {
    const test::TempDir dir;
    File file;
    ASSERT_TRUE(file.open(dir.write("records", std::string(1000, '\1')).c_str()));
    for (const std::int64_t hidden : {0, 70, 2 << 20, 1 << 30}) {
        RecordReader reader;
        reader.layout = {.file = &file,
                         .recordSamples = 30 + hidden,
                         .points = 10,
                         .channels = {{0, 10}, {10, 10}, {20, 10}}};
        ASSERT_TRUE(reader.open("scripted"));
        std::vector<float> page(50);
        reader.getData(0, 0, 49, page.data(), 1.0, 0);
        const bool areFrames = !reader.takeCalls("getSampleChunk").empty();
        EXPECT_EQ(areFrames, hidden > 1000) << hidden;
        EXPECT_EQ(page[7], areFrames ? static_cast<float>(reader.rawAt(0, 7)) : 257.0F);
    }
}

} // namespace
} // namespace kvsig
