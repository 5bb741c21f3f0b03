#include "kvsig/kernel/DataPage.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace kvsig {
namespace {

// The buffer's bytes as letters: '.' for zero, 'x' for anything else.
std::string shown(const PageBuffer& buffer) {
    std::string text;
    for (std::int64_t i = 0; i < buffer.capacity(); ++i)
        text.push_back(buffer.data()[i] == std::byte{} ? '.' : 'x');
    return text;
}

void fill(PageBuffer& buffer, std::int64_t end) {
    buffer.use(end);
    std::fill_n(buffer.data(), end, std::byte{0xFF});
}

TEST(PageBuffer, WhatIsNotWrittenIsZero) {
    PageBuffer buffer;
    ASSERT_TRUE(buffer.reserve(10));
    EXPECT_EQ(shown(buffer), "..........");
    fill(buffer, 6);
    buffer.zero(4, 5);
    EXPECT_EQ(shown(buffer), "xxxx.x....");
    buffer.zero(2, 10);
    EXPECT_EQ(shown(buffer), "xx........");
    buffer.zero(9, 3);
    EXPECT_EQ(shown(buffer), "xx........") << "nothing between";
    ASSERT_TRUE(buffer.reserve(5));
    EXPECT_EQ(shown(buffer), "xx........") << "large enough already";
    fill(buffer, 10);
    buffer.zero(0, 10);
    EXPECT_EQ(shown(buffer), "..........");
    fill(buffer, 10);
    ASSERT_TRUE(buffer.reserve(12));
    buffer.zero(0, 12);
    EXPECT_EQ(shown(buffer), "............");
}

TEST(PageBuffer, MoreThanAPageMayTakeIsRefused) {
    PageBuffer buffer;
    ASSERT_TRUE(buffer.reserve(10));
    EXPECT_FALSE(buffer.reserve(maxPageBytes + 1));
    EXPECT_EQ(buffer.capacity(), 0);
    EXPECT_EQ(buffer.data(), nullptr);
    EXPECT_TRUE(buffer.reserve(10)) << "usable again";
}

} // namespace
} // namespace kvsig
