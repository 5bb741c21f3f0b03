#include "kvsig/util/ProfileFile.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>
#include <string>

namespace kvsig {
namespace {

const std::string original = "; head\r\n\r\n[One]\r\nF3=1\r\n; inside\r\nfp1 = 2 \r\nword\r\n\r\n"
                             "; of two\r\n[Two]\r\n[one]\r\nF3=again";

std::string with(const std::string& text, const char* section, const char* key, const char* value) {
    ProfileDocument document(text);
    EXPECT_TRUE(document.setKey(section, key, value));
    return document.text();
}

// A null key stands for the whole section.
std::string without(const std::string& text, const char* section, const char* key) {
    ProfileDocument document(text);
    key ? document.deleteKey(section, key) : document.deleteSection(section);
    return document.text();
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    return at == std::string::npos ? "not found: " + from : text.replace(at, from.size(), to);
}

TEST(ProfileDocument, WhatIsNotNamedKeepsItsBytes) {
    EXPECT_EQ(ProfileDocument(original).text(), original);
    EXPECT_EQ(with(original, "ONE", "f3", "x = y"), replaced(original, "F3=1", "F3=x = y"));
    EXPECT_EQ(with(original, "one", "Cz", "3"), replaced(original, "word\r\n", "word\r\nCz=3\r\n"));
    EXPECT_EQ(with(original, "two", "Cz", ""), replaced(original, "[Two]\r\n", "[Two]\r\nCz=\r\n"));
    EXPECT_EQ(with(original, "New", "a", "b"), original + "\r\n[New]\r\na=b\r\n");
    EXPECT_EQ(with("", "N", "a", "b"), "[N]\na=b\n");
    EXPECT_EQ(with("\xEF\xBB\xBF[N]\na=b\n", "N", "a", "c"), "\xEF\xBB\xBF[N]\na=c\n");
    // The end of such a line was completed by a whole line end, so that its section was called
    // "S\r".
    EXPECT_EQ(with("; head\r\n[S]\r", "S", "a", "b"), "; head\r\n[S]\r\na=b\r\n");
    EXPECT_EQ(with("[S\r", "S", "a", "b"), "[S\r\na=b\n");
}

TEST(ProfileDocument, DeletingLeavesCommentsOfWhatFollows) {
    EXPECT_EQ(without(original, "oNE", "f3"),
              replaced(replaced(original, "F3=1\r\n", ""), "F3=again", ""))
        << "all of them";
    EXPECT_EQ(without(original, "one", nullptr), "; head\r\n\r\n\r\n; of two\r\n[Two]\r\n");
    EXPECT_EQ(without(original, "Two", nullptr), replaced(original, "[Two]\r\n", ""));
    for (const char* absent : {"fp1", "; inside", "word", "\"", ""})
        EXPECT_EQ(without(original, "one", absent), original) << absent;
    EXPECT_EQ(without(original, "Three", nullptr), original);

    std::string many; // minutes, if each took a pass of its own
    for (int i = 0; i < 200000; ++i)
        many += "[s]\nk=1\n";
    EXPECT_EQ(without(many, "S", "K").size(), 800000U);
    EXPECT_EQ(without(many, "S", nullptr), "");
}

TEST(ProfileDocument, ASectionIsReplacedInItsPlace) {
    const std::string text = "[a]\nx=1\n[B]\nold=1\n\n; of c\n[c]\n";
    ProfileDocument document(text);
    EXPECT_TRUE(document.setSection("new", {{"k", "1"}}));
    document.deleteSection("NEW");
    EXPECT_EQ(document.text(), text) << "nothing gathers";
    EXPECT_TRUE(document.setSection("b", {{"k", "1"}, {"K 2", ""}}));
    EXPECT_EQ(document.text(), "[a]\nx=1\n[B]\nk=1\nK 2=\n\n; of c\n[c]\n");
}

TEST(ProfileDocument, TextsThatWouldNotReadBackAreRefused) {
    using std::string_literals::operator""s;
    ProfileDocument document(original);
    for (const std::string& section : {""s, "a]b"s, "a\nb"s, "a\rb"s, "a\0b"s})
        EXPECT_FALSE(document.setKey(section, "k", "v")) << section;
    for (const std::string& key : {""s, "a=b"s, "[a"s, ";a"s, "a\nb"s}) {
        EXPECT_FALSE(document.setKey("One", key, "v")) << key;
        EXPECT_FALSE(document.setSection("One", {{"good", "1"}, {key, "v"}})) << key;
    }
    EXPECT_FALSE(document.setKey("One", "k", "v\n[Two]"));
    EXPECT_EQ(document.text(), original);
}

TEST(ProfileFile, IsWrittenOnlyWhenItChanges) {
    const test::TempDir dir;
    const std::string path = dir.file("map.ini");
    const auto edit = [&path](bool result, const char* key) {
        return editProfileFile(path.c_str(), [=](ProfileDocument& document) {
            document.deleteSection("absent");
            return (!key || document.setKey("s", key, "1")) && result;
        });
    };
    EXPECT_TRUE(edit(true, nullptr));
    EXPECT_FALSE(std::filesystem::exists(path)) << "nothing to write";
    EXPECT_TRUE(edit(true, "k"));
    EXPECT_EQ(dir.read("map.ini"), "[s]\nk=1\n");
    EXPECT_FALSE(edit(false, "other"));
    EXPECT_EQ(dir.read("map.ini"), "[s]\nk=1\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
}

TEST(ProfileFile, WhatCannotBeReadIsNotWritten) {
    const test::TempDir dir;
    const auto set = [](ProfileDocument& document) { return document.setKey("s", "k", "1"); };
    EXPECT_FALSE(editProfileFile(dir.path().c_str(), set)) << "a folder";
    EXPECT_FALSE(editProfileFile(dir.file("no/such/folder.ini").c_str(), set));
    const std::string huge = dir.write("huge.ini", "");
    std::filesystem::resize_file(huge, longestProfileFile + 1);
    EXPECT_FALSE(editProfileFile(huge.c_str(), set));
    EXPECT_EQ(std::filesystem::file_size(huge), longestProfileFile + 1);
    const std::string small = dir.write("small.ini", "[s]\n");
    const auto grow = [&small](std::int64_t bytes) {
        const std::string value(static_cast<std::size_t>(bytes - 7), 'v');
        return editProfileFile(small.c_str(),
                               [&](ProfileDocument& d) { return d.setKey("s", "k", value); });
    };
    EXPECT_FALSE(grow(longestProfileFile + 1)) << "it could not be read again";
    EXPECT_EQ(dir.read("small.ini"), "[s]\n");
    EXPECT_TRUE(grow(longestProfileFile));
    EXPECT_TRUE(editProfileFile(small.c_str(), set));
}

} // namespace
} // namespace kvsig
