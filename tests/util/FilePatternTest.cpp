#include "kvsig/util/FilePattern.h"

#include "kvsig/util/NeighbourFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>
#include <string>

namespace kvsig {
namespace {

TEST(FilePattern, FitsNamesAsAFileDialogDoes) {
    const struct {
        const char* name;
        const char* pattern;
        bool fits;
    } cases[] = {
        {"a.edf", "*.edf", true},
        {"A.EDF", "*.edf", true},
        {"a.edfx", "*.edf", false},
        {".edf", "*.edf", true},
        {"a.r27", "*.w18;*.r27;*.w27", true},
        {"a.w27", "*.w18;*.r27;*.w27", true},
        {"a.w2", "*.w18;*.r27;*.w27", false},
        {"night.ns3", "*.ns*", true},
        {"E12.dat", "E*.dat", true},
        {"F12.dat", "E*.dat", false},
        {"d12", "d*.", true},
        {"d12.x", "d*.", false},
        {"x.007", "*.00?", true},
        {"x.00", "*.00?", false},
        {"data", "data", true},
        {"data2", "data", false},
        {"p - 1.ez3", "* - 1.ez3", true},
        {"x_0000.eeg", "*_0000.eeg", true},
        {"EEG,Composite,SampleSeries,Montage,data", "EEG,Composite,SampleSeries,*,data", true},
        {"n_01234567-89ab-cdef-0123-456789abcdef.erd",
         "*_????????"
         "-????"
         "-????"
         "-????"
         "-????????????.erd",
         true},
        {"n_01234567-89ab.erd",
         "*_????????"
         "-????"
         "-????"
         "-????"
         "-????????????.erd",
         false},
        {"", "*", true},
        {"", "?", false},
        {"a", "", false},
        {"a", ";;a", true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fitsFilePattern(c.name, c.pattern), c.fits) << c.name << " " << c.pattern;
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
    std::filesystem::create_directory(dir.file("folder"));
    EXPECT_EQ(neighbourFile(layout, "folder"), "");
    EXPECT_EQ(neighbourFile(layout, "old/"), "");
    EXPECT_EQ(neighbourFile(dir.file("no/such/x.lay"), "rec.dat"), "");
}

} // namespace
} // namespace kvsig
