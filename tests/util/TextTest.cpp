#include "kvsig/util/Text.h"

#include "kvsig/util/StripBlanks.h"
#include "kvsig/util/Utf16.h"

#include <gtest/gtest.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvsig {
namespace {

TEST(Text, CopiesAreCutAndTerminated) {
    char field[5] = {'x', 'x', 'x', 'x', 'x'};
    copyText(field, "electrode");
    EXPECT_STREQ(field, "elec");
    copyText(field, static_cast<const char*>(nullptr));
    EXPECT_STREQ(field, "");
    copyText(field, std::string_view("a\0bc", 4));
    EXPECT_STREQ(field, "a");
    copyText(field, 0, "zz");
    EXPECT_STREQ(field, "a") << "no room, nothing written";
}

// A getter that forwards to the record being written hands the copy its own target.
TEST(Text, CopiesOntoItself) {
    char field[8] = "Fp1-F7";
    copyText(field, static_cast<const char*>(field));
    EXPECT_STREQ(field, "Fp1-F7");
    copyText(field, 4, field + 4);
    EXPECT_STREQ(field, "F7");
    copyText(field, "C3");
    copyText(field + 1, 5, static_cast<const char*>(field));
    EXPECT_STREQ(field, "CC3");
}

TEST(Text, ComparesAsciiLettersOnly) {
    EXPECT_TRUE(equalNoCase("Fp1", "fP1"));
    EXPECT_FALSE(equalNoCase("Fp1", "Fp"));
    EXPECT_FALSE(equalNoCase("\xC4", "\xE4")) << "Latin-1 umlauts are opaque bytes";
    EXPECT_TRUE(startsWithNoCase("eeg Fp1", "EEG "));
    EXPECT_FALSE(startsWithNoCase("EE", "EEG"));
}

TEST(Text, EmptyWordsAreNotCounted) {
    EXPECT_EQ(splitWords("  a  bc ", ' '), (std::vector<std::string>{"a", "bc"}));
    EXPECT_TRUE(splitWords("   ", ' ').empty());
}

TEST(StripBlanks, OnlySpacesAtTheEndGo) {
    const auto stripped = [](const char* text) {
        static char buf[16];
        copyText(buf, text);
        return std::string(StripBlanks(buf) == buf ? buf : "another buffer");
    };
    EXPECT_EQ(stripped("  a b "), "  a b");
    EXPECT_EQ(stripped("abc\t "), "abc\t");
    EXPECT_EQ(stripped("   "), "");
    EXPECT_EQ(stripped(""), "");
    EXPECT_EQ(StripBlanks(nullptr), nullptr);
}

TEST(Utf16, BecomesUtf8UpToTheFirstNul) {
    using namespace std::string_view_literals;
    const auto converted = [](std::string_view bytes) {
        return textOfUtf16(std::as_bytes(std::span(bytes)));
    };
    EXPECT_EQ(converted("A\0\xB5\0\xAC\x20\0\0B\0"sv), "A\xC2\xB5\xE2\x82\xAC");
    EXPECT_EQ(converted("\x3D\xD8\x00\xDE!\0"sv), "\xF0\x9F\x98\x80!"); // U+1F600
    for (const auto half : {"\x3D\xD8"sv, "\x00\xDE"sv, "\x3D\xD8\x3D"sv})
        EXPECT_EQ(converted(half), "\xEF\xBF\xBD");
    EXPECT_EQ(converted("\x3D\xD8x\0"sv), "\xEF\xBF\xBDx");
    EXPECT_EQ(converted("A"sv), "");
}

} // namespace
} // namespace kvsig
