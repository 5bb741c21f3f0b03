#include "kvsig/util/PathText.h"

#include "kvsig/util/Text.h"
#include "support/InDirectory.h"
#include "support/TempDir.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace kvsig {
namespace {

namespace fs = std::filesystem;

// What `write` makes of the text in a buffer of the documented size; a mark behind it must stay.
std::string written(const std::string& before, const std::function<void(char*)>& write) {
    char buf[pathTextSize + 16];
    std::fill(std::begin(buf), std::end(buf), '#');
    copyText(buf, pathTextSize, before);
    write(buf);
    EXPECT_EQ(std::count(buf + pathTextSize, std::end(buf), '#'), 16) << "behind the end";
    return buf;
}

std::string withExt(const std::string& path, const char* ext) {
    return written(path, [ext](char* buf) { EXPECT_EQ(KrnlChangeExt(buf, ext), buf); });
}

std::string withFile(const std::string& path, const char* file) {
    return written(path, [file](char* buf) { EXPECT_EQ(KrnlChangeFile(buf, file), buf); });
}

std::string currentFolder() {
    return written("nothing", [](char* buf) { KrnlGetCurDir(0, buf); });
}

TEST(PathText, TheExtensionIsReplaced) {
    for (const char* ext : {"lay", ".lay"})
        EXPECT_EQ(withExt("/data/night.edf", ext), "/data/night.lay");
    EXPECT_EQ(withExt("a.b/night", "lay"), "a.b/night.lay") << "a dot in a folder's name";
    EXPECT_EQ(withExt("night.1.edf", "lay"), "night.1.lay");
    for (const char* none : {"", static_cast<const char*>(nullptr)})
        EXPECT_EQ(withExt("night.edf", none), "night");
    EXPECT_EQ(withExt("/data/.hidden", "lay"), "/data/.hidden.lay");
    EXPECT_EQ(withExt("/data/..", "lay"), "/data/...lay");
}

TEST(PathText, TheFileIsReplaced) {
    EXPECT_EQ(withFile("/data/night.edf", "day.lay"), "/data/day.lay");
    EXPECT_EQ(withFile("night.edf", "day"), "day");
    EXPECT_EQ(withFile("/data/", "day.lay"), "/data/day.lay");
    EXPECT_EQ(withFile("/night", nullptr), "/");
    EXPECT_EQ(written("/data/night.edf", [](char* buf) { KrnlChangeFile(buf, buf + 6); }),
              "/data/night.edf")
        << "the text may lie in the buffer itself";
}

TEST(PathText, WhatDoesNotFitBecomesEmpty) {
    const std::string folder = "/" + std::string(249, 'd') + "/";
    EXPECT_EQ(withFile(folder, "1234.edf"), folder + "1234.edf") << "259 characters";
    EXPECT_EQ(withFile(folder, "12345.edf"), "");
    EXPECT_EQ(withExt(folder + "12345678", "x"), "");
    EXPECT_EQ(KrnlChangeExt(nullptr, "x"), nullptr);
}

TEST(CurrentFolder, TheFolderOfAPathIsEntered) {
    const test::TempDir dir;
    const test::InDirectory restored(dir.path());
    const std::string here = fs::canonical(dir.path()).string();
    fs::create_directory("sub");
    const struct {
        std::string path;
        int entered;
        std::string folder;
    } moves[] = {
        {"/night.edf", 1, "/"},         {dir.file("night.edf"), 1, here}, {"sub", 1, here},
        {"missing/night.edf", 0, here}, {"sub/", 1, here + "/sub"},
    };
    for (const auto& move : moves) {
        EXPECT_EQ(KrnlMoveToDir(move.path.c_str()), move.entered) << move.path;
        EXPECT_EQ(currentFolder(), move.folder) << move.path;
    }
    EXPECT_EQ(KrnlMoveToDir(nullptr), 1);
}

TEST(CurrentFolder, AFolderTooDeepOrGoneIsEmpty) {
    const test::TempDir dir;
    const std::string name(200, 'd');
    const fs::path deep = dir.path() / name / name;
    fs::create_directories(deep);
    const test::InDirectory restored(deep);
    EXPECT_EQ(currentFolder(), "");
    fs::remove(deep);
    EXPECT_EQ(currentFolder(), "");
}

} // namespace
} // namespace kvsig
