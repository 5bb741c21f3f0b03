#include "kvsig/util/Text.h"

#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>
#include <string>
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

TEST(Text, WritingLeavesTheHostsStreamFormatOut) {
    std::ostringstream stream;
    stream << std::setw(10) << std::setfill('*');
    writeText(stream, "ab");
    EXPECT_EQ(stream.str(), "ab");
    EXPECT_EQ(stream.width(), 10);
}

} // namespace
} // namespace kvsig
