#include "kvsig/util/Utf16.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace kvsig {
namespace {

std::string converted(std::string_view bytes) {
    return textOfUtf16(std::as_bytes(std::span(bytes)));
}

TEST(Utf16, BecomesUtf8UpToTheFirstNul) {
    using namespace std::string_view_literals;
    EXPECT_EQ(converted("A\0\xB5\0\xAC\x20\0\0B\0"sv), "A\xC2\xB5\xE2\x82\xAC");
    EXPECT_EQ(converted("\x3D\xD8\x00\xDE!\0"sv), "\xF0\x9F\x98\x80!"); // U+1F600
    for (const auto half : {"\x3D\xD8"sv, "\x00\xDE"sv, "\x3D\xD8\x3D"sv})
        EXPECT_EQ(converted(half), "\xEF\xBF\xBD");
    EXPECT_EQ(converted("\x3D\xD8x\0"sv), "\xEF\xBF\xBDx");
    EXPECT_EQ(converted(""sv), "");
    EXPECT_EQ(converted("A"sv), "");
}

} // namespace
} // namespace kvsig
