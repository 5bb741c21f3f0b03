#include "kvsig/util/StripBlanks.h"

#include "kvsig/util/Text.h"

#include <gtest/gtest.h>
#include <string>

namespace kvsig {
namespace {

std::string stripped(const char* text) {
    char buf[16];
    copyText(buf, text);
    return StripBlanks(buf) == buf ? buf : "another buffer";
}

TEST(StripBlanks, OnlySpacesAtTheEndGo) {
    EXPECT_EQ(stripped("abc  "), "abc");
    EXPECT_EQ(stripped("  a b "), "  a b");
    EXPECT_EQ(stripped("abc\t "), "abc\t");
    EXPECT_EQ(stripped("   "), "");
    EXPECT_EQ(stripped(""), "");
    EXPECT_EQ(StripBlanks(nullptr), nullptr);
}

} // namespace
} // namespace kvsig
