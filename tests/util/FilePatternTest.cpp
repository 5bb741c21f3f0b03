#include "kvsig/util/FilePattern.h"

#include "kvsig/util/NeighbourFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kvsig {
namespace {

TEST(FilePattern, FitsNamesAsAFileDialogDoes) {
    const struct {
        const char* pattern;
        std::vector<const char*> fitting, others;
    } cases[] = {
        {"*.edf", {"A.EDF", ".edf"}, {"a.edfx"}},
        {"*.w18;*.r27;*.w27", {"a.r27", "a.w27"}, {"a.w2"}},
        {"E*.dat", {"E12.dat"}, {"F12.dat"}},
        {"d*.", {"d12"}, {"d12.x"}},
        {"*.00?", {"x.007"}, {"x.00"}},
        {"data", {"data"}, {"data2"}},
        {"a,*,data", {"a,Montage,data"}, {"a,data"}},
        {"*", {"", "a"}, {}},
        {"?", {"a"}, {""}},
        {"", {}, {"a"}},
        {";;a", {"a"}, {"b"}},
    };
    for (const auto& c : cases) {
        for (const char* name : c.fitting)
            EXPECT_TRUE(fitsFilePattern(name, c.pattern)) << name << " " << c.pattern;
        for (const char* name : c.others)
            EXPECT_FALSE(fitsFilePattern(name, c.pattern)) << name << " " << c.pattern;
    }
    // Not exponential.
    std::string stars;
    for (int i = 0; i < 500; ++i)
        stars += "*a";
    EXPECT_FALSE(fitsFilePattern(std::string(5000, 'a') + "b", stars + "c"));
}

TEST(NeighbourFile, FindsNamesFromOtherSystems) {
    EXPECT_EQ(baseName("C:\\a\\b.dat"), "b.dat");
    EXPECT_EQ(baseName("/a/b.dat"), "b.dat");
    EXPECT_EQ(baseName("c:b.dat"), "b.dat");
    EXPECT_EQ(baseName("1:b.dat"), "1:b.dat");
    EXPECT_EQ(baseName("a/"), "");
    const test::TempDir dir;
    const std::string layout = dir.file("x.lay");
    dir.write("Rec.DAT", "1");
    EXPECT_EQ(neighbourFile(layout, "C:\\old\\rec.dat"), dir.file("Rec.DAT"));
    dir.write("rEC.dat", "1");
    EXPECT_EQ(neighbourFile(layout, "rec.dat"), dir.file("Rec.DAT"));
    dir.write("rec.dat", "1");
    EXPECT_EQ(neighbourFile(layout, "old/rec.dat"), dir.file("rec.dat"));
    EXPECT_EQ(neighbourFile(layout, "absent"), "");
    std::filesystem::create_symlink("nowhere", dir.file("Lost.dat"));
    EXPECT_EQ(neighbourFile(layout, "lost.dat"), dir.file("Lost.dat")) << "there, though not open";
    dir.write("LOST.DAT", "1");
    EXPECT_EQ(neighbourFile(layout, "Lost.dat"), dir.file("LOST.DAT"));
    std::filesystem::create_directory(dir.file("folder"));
    EXPECT_EQ(neighbourFile(layout, "folder"), "");
    EXPECT_EQ(neighbourFile(layout, "old/"), "");
    EXPECT_EQ(neighbourFile(dir.file("no/such/x.lay"), "rec.dat"), "");
}

} // namespace
} // namespace kvsig
