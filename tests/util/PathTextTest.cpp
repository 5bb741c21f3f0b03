#include "kvsig/util/PathText.h"

#include "kvsig/util/Text.h"
#include "support/TempDir.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace kvsig {
namespace {

namespace fs = std::filesystem;

// A buffer of the documented size with a mark behind it that must stay.
struct PathBuffer {
    explicit PathBuffer(const std::string& path) {
        std::memset(bytes, '#', sizeof bytes);
        copyText(bytes, pathTextSize, path);
    }
    std::string text() const {
        for (std::size_t i = pathTextSize; i < sizeof bytes; ++i)
            if (bytes[i] != '#')
                return "written behind the end";
        return bytes;
    }
    char bytes[pathTextSize + 16];
};

std::string withExt(const std::string& path, const char* ext) {
    PathBuffer buf(path);
    EXPECT_EQ(KrnlChangeExt(buf.bytes, ext), buf.bytes);
    return buf.text();
}

std::string withFile(const std::string& path, const char* file) {
    PathBuffer buf(path);
    EXPECT_EQ(KrnlChangeFile(buf.bytes, file), buf.bytes);
    return buf.text();
}

TEST(PathText, TheExtensionIsReplaced) {
    EXPECT_EQ(withExt("/data/night.edf", "lay"), "/data/night.lay");
    EXPECT_EQ(withExt("/data/night.edf", ".lay"), "/data/night.lay");
    EXPECT_EQ(withExt("a.b/night", "lay"), "a.b/night.lay") << "a dot in a folder's name";
    EXPECT_EQ(withExt("night.1.edf", "lay"), "night.1.lay");
    EXPECT_EQ(withExt("night.edf", ""), "night");
    EXPECT_EQ(withExt("night.edf", nullptr), "night");
    EXPECT_EQ(withExt("/data/.hidden", "lay"), "/data/.hidden.lay");
    EXPECT_EQ(withExt("/data/..", "lay"), "/data/...lay");
}

TEST(PathText, TheFileIsReplaced) {
    EXPECT_EQ(withFile("/data/night.edf", "day.lay"), "/data/day.lay");
    EXPECT_EQ(withFile("night.edf", "day"), "day");
    EXPECT_EQ(withFile("/data/", "day.lay"), "/data/day.lay");
    EXPECT_EQ(withFile("/night", nullptr), "/");
    PathBuffer own("/data/night.edf");
    KrnlChangeFile(own.bytes, own.bytes + 6);
    EXPECT_EQ(own.text(), "/data/night.edf") << "the text may lie in the buffer itself";
}

TEST(PathText, WhatDoesNotFitBecomesEmpty) {
    const std::string folder = "/" + std::string(249, 'd') + "/";
    EXPECT_EQ(withFile(folder, "1234.edf"), folder + "1234.edf") << "259 characters";
    EXPECT_EQ(withFile(folder, "12345.edf"), "");
    EXPECT_EQ(withExt(folder + "12345678", "x"), "");
    EXPECT_EQ(KrnlChangeExt(nullptr, "x"), nullptr);
}

// Comes back to the folder where the test began.
class CurrentFolder : public testing::Test {
  protected:
    void TearDown() override { fs::current_path(m_start); }

    static std::string current() {
        PathBuffer buf("nothing written");
        KrnlGetCurDir(0, buf.bytes);
        return buf.text();
    }
    fs::path m_start = fs::current_path();
    test::TempDir m_dir;
};

TEST_F(CurrentFolder, TheFolderOfAPathIsEntered) {
    const std::string here = fs::canonical(m_dir.path()).string();
    EXPECT_EQ(KrnlMoveToDir(m_dir.file("night.edf").c_str()), 1);
    EXPECT_EQ(current(), here);
    fs::create_directory("sub");
    EXPECT_EQ(KrnlMoveToDir("sub"), 1);
    EXPECT_EQ(KrnlMoveToDir(nullptr), 1);
    EXPECT_EQ(current(), here) << "no folder is named";
    EXPECT_EQ(KrnlMoveToDir("missing/night.edf"), 0);
    EXPECT_EQ(current(), here);
    EXPECT_EQ(KrnlMoveToDir("sub/"), 1);
    EXPECT_EQ(current(), here + "/sub");
    EXPECT_EQ(KrnlMoveToDir("/night.edf"), 1);
    EXPECT_EQ(current(), "/");
}

TEST_F(CurrentFolder, AFolderTooDeepOrGoneIsEmpty) {
    fs::current_path(m_dir.path());
    const std::string name(200, 'd');
    fs::create_directories(name + "/" + name);
    fs::current_path(name + "/" + name);
    EXPECT_EQ(current(), "");
    fs::remove(fs::current_path());
    EXPECT_EQ(current(), "");
}

} // namespace
} // namespace kvsig
