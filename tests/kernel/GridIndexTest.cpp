#include "kvsig/kernel/GridIndex.h"

#include "support/FakeReader.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace kvsig {
namespace {

test::FakeRecording manyChannels() {
    test::FakeRecording file;
    file.channels.clear();
    for (int i = 0; i < 200; ++i)
        file.channels.push_back({.grid1 = "E" + std::to_string(i % 150)});
    return file;
}

// The names change by every way that there is; an index of the old ones would answer wrongly.
TEST(GridIndex, NamesOfManyChannelsFollowTheirChanges) {
    test::FakeReader reader(manyChannels());
    ASSERT_TRUE(reader.open("many"));
    EXPECT_EQ(reader.indexOfG1("e140"), 140);
    EXPECT_EQ(reader.indexOfG1("E10"), 10) << "the first of two";
    EXPECT_EQ(reader.indexOfG1("E150"), -1);

    std::istringstream map("[M]\nCz-Ref=141\nE140-Ref=3\n");
    ASSERT_TRUE(reader.applyChannelMapDefn("M", map));
    EXPECT_EQ(reader.indexOfG1("E140"), 2);
    EXPECT_EQ(reader.indexOfG1("cz"), 140);

    reader.setGridNamesAsNumbers(true);
    EXPECT_EQ(reader.indexOfG1("cz"), -1);
    EXPECT_EQ(reader.indexOfG1("141"), 140);
    reader.setGridNamesAsNumbers(false);

    std::istringstream none;
    ASSERT_TRUE(reader.applyChannelMapDefn("(Default)", none));
    EXPECT_EQ(reader.indexOfG1("cz"), -1);
    EXPECT_EQ(reader.indexOfG1("E140"), 140);
    reader.setChannelCount(100);
    EXPECT_EQ(reader.indexOfG1("E140"), -1);
    EXPECT_EQ(reader.indexOfG1("E99"), 99);
}

class RenamingReader : public test::FakeReader {
  public:
    using FakeReader::FakeReader;
    const char* grid1(int channel) override { return channel == 150 ? "Own" : ""; }
};

TEST(GridIndex, AFormatWithNamesOfItsOwnIsAsked) {
    RenamingReader reader(manyChannels());
    ASSERT_TRUE(reader.open("many"));
    EXPECT_EQ(reader.indexOfG1("own"), 150);
    EXPECT_EQ(reader.indexOfG1("E140"), -1);
}

} // namespace
} // namespace kvsig
