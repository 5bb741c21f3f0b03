#include "kvsig/util/OutputFile.h"

#include "support/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace kvsig {
namespace {

namespace fs = std::filesystem;

class OutputFileTest : public testing::Test {
  protected:
    auto entries() const { return std::distance(fs::directory_iterator(folder), {}); }

    const test::TempDir dir;
    const fs::path folder = dir.path();
};

TEST_F(OutputFileTest, AppearsOnlyWhenCommitted) {
    const std::string path = dir.write("a.edf", "old");
    {
        OutputFile file;
        ASSERT_TRUE(file.open(path.c_str())) << file.error();
        EXPECT_TRUE(file.write(std::string(1 << 20, 'x')));
        EXPECT_EQ(dir.read("a.edf"), "old");
        EXPECT_EQ(entries(), 2) << "the temporary stands beside the target";
    }
    EXPECT_EQ(dir.read("a.edf"), "old");
    OutputFile file;
    ASSERT_TRUE(file.open(path.c_str()));
    EXPECT_TRUE(file.write("header"));
    EXPECT_TRUE(file.commit());
    EXPECT_FALSE(file.write("more")) << "closed";
    EXPECT_FALSE(file.commit());
    EXPECT_EQ(dir.read("a.edf"), "header");
    EXPECT_EQ(entries(), 1) << "no temporary stays behind";
}

TEST_F(OutputFileTest, AppendedAndPlacedBytesKeepTheirPlaces) {
    const std::string large(400'000, 'b');
    OutputFile file;
    ASSERT_TRUE(file.open(dir.file("mixed.bin").c_str()));
    EXPECT_TRUE(file.write("aaaa"));
    EXPECT_TRUE(file.writeAt(1, "XY", 2)) << "over bytes that are still buffered";
    EXPECT_TRUE(file.write(large)) << "longer than any buffer";
    EXPECT_TRUE(file.write("c"));
    EXPECT_TRUE(file.writeAt(4 + 400'000 + 3, "end", 3)) << "behind the end";
    EXPECT_TRUE(file.write("d"));
    ASSERT_TRUE(file.commit());
    EXPECT_EQ(dir.read("mixed.bin"), "aXYa" + large + "cd" + std::string(1, '\0') + "end");
}

TEST_F(OutputFileTest, KeepsLinksAndPermissions) {
    const fs::path goal = folder / "goal.csv";
    const fs::path link = folder / "link.csv";
    dir.write("goal.csv", "old");
    fs::permissions(goal, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("goal.csv", link);
    OutputFile file;
    ASSERT_TRUE(file.open(link.c_str()));
    EXPECT_TRUE(file.write("new"));
    ASSERT_TRUE(file.commit());
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(dir.read("goal.csv"), "new");
    EXPECT_EQ(fs::status(goal).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(OutputFileTest, SaysWhyInWords) {
    OutputFile file;
    EXPECT_FALSE(file.open((folder / "none" / "x.csv").c_str()));
    EXPECT_EQ(file.error(), "no such directory");
    EXPECT_FALSE(file.open(folder.c_str()));
    EXPECT_EQ(file.error(), "is a directory");
    EXPECT_FALSE(file.open(nullptr));
    EXPECT_EQ(file.error(), "no file name");
    EXPECT_TRUE(file.open((folder / "x.csv").c_str()));
    EXPECT_EQ(file.error(), "");
    EXPECT_FALSE(file.writeAt(-1, "x", 1));
    EXPECT_FALSE(file.commit()) << "a failure before is not forgotten";
    EXPECT_EQ(entries(), 0);
}

TEST_F(OutputFileTest, WritesThroughToWhatIsNoRegularFile) {
    OutputFile file;
    ASSERT_TRUE(file.open("/dev/null"));
    EXPECT_TRUE(file.write("gone"));
    EXPECT_TRUE(file.commit());
    EXPECT_FALSE(fs::is_regular_file("/dev/null"));
}

} // namespace
} // namespace kvsig
