#include "kvsig/util/NumberText.h"

#include "kvsig/util/Saturate.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace kvsig {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(NumberText, ReadsTheNumberAtTheStart) {
    EXPECT_EQ(leadingDouble("  -12.5uV"), -12.5);
    EXPECT_EQ(leadingDouble("+3.25"), 3.25) << "headers hold plus signs";
    EXPECT_EQ(leadingDouble("+-3"), 0.0);
    EXPECT_EQ(leadingDouble("1e-1:"), 0.1);
    EXPECT_EQ(leadingDouble(".5"), 0.5);
    EXPECT_EQ(leadingDouble("1,5"), 1.0) << "the decimal mark is a point";
    EXPECT_EQ(leadingDouble(""), 0.0);
    for (const char* noNumber : {"off", "inf", "nan", "-", ".", "e5", "- 1", "\xB5V"})
        EXPECT_EQ(leadingDouble(noNumber), 0.0) << noNumber;
}

TEST(NumberText, HoldsNumbersOutOfRange) {
    EXPECT_EQ(leadingDouble("1e999"), infinity);
    EXPECT_EQ(leadingDouble("-1e999"), -infinity);
    EXPECT_EQ(leadingDouble("1e-999"), 0.0);
    EXPECT_EQ(leadingDouble("0.0001e-99999999999999999999"), 0.0);
    EXPECT_EQ(leadingDouble("12345e99999999999999999999"), infinity);
    EXPECT_EQ(leadingInteger("99999999999999999999"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(leadingInteger(" -99999999999999999999"), std::numeric_limits<std::int64_t>::min());
}

TEST(NumberText, ReadsWholeNumbers) {
    EXPECT_EQ(leadingInteger(" 31 E"), 31);
    EXPECT_EQ(leadingInteger("-1      "), -1);
    EXPECT_EQ(leadingInteger("+7"), 7);
    double value = 42.0;
    EXPECT_FALSE(wholeDouble("1.5 Hz", value));
    EXPECT_EQ(value, 42.0);
    EXPECT_TRUE(wholeDouble(" 1.5 ", value));
    EXPECT_EQ(value, 1.5);
}

TEST(NumberText, ShortDecimalsAreRoundedLikeLongOnes) {
    std::minstd_rand random(7);
    for (int i = 0; i < 20000; ++i) {
        std::string text(1 + random() % 18, '0');
        for (char& c : text)
            c = static_cast<char>('0' + random() % 10);
        if (random() % 4 != 0)
            text[random() % text.size()] = '.';
        if (text == ".")
            continue;
        text.insert(0, random() % 2 == 0 ? "-" : "");
        double full = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), full);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(leadingDouble(text)),
                  std::bit_cast<std::uint64_t>(full))
            << text;
        std::int64_t whole = 0;
        std::from_chars(text.data(), text.data() + text.size(), whole);
        EXPECT_EQ(leadingInteger(text), whole) << text;
    }
}

TEST(NumberText, ReadsDottedTriples) {
    EXPECT_TRUE(dottedTriple(" 1. 2. 3x").complete);
    for (const char* bad : {"04..89", "4.-.89", "--4.7.89", "4.+-7.89"})
        EXPECT_FALSE(dottedTriple(bad).complete) << bad;
}

TEST(NumberText, PrintsAsThePrintfFormats) {
    EXPECT_EQ(generalText(0.053333335, 3), "0.0533");
    EXPECT_EQ(generalText(1000.0, 3), "1e+03");
    EXPECT_EQ(fixedText(0.5, 3), "0.500");
    EXPECT_EQ(fixedText(-1e308, 6).size(), 309u + 1 + 1 + 6);
    EXPECT_EQ(shortestText(0.1F), "0.1");
    EXPECT_EQ(shortestText(0.1), "0.1");
    EXPECT_EQ(paddedText(-7, 3), "-07");
    EXPECT_EQ(paddedText(1234, 2), "1234");
}

TEST(Saturate, HoldsValuesInsideTheTarget) {
    EXPECT_EQ(saturate<std::int32_t>(1e300), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(saturate<std::int32_t>(-infinity), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(saturate<std::int64_t>(9.3e18), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(saturate<std::int32_t>(std::nan("")), 0);
    EXPECT_EQ(saturate<std::int32_t>(-2.9), -2);
    EXPECT_EQ(saturate<std::int16_t>(std::int64_t{1} << 40), 32767);
    EXPECT_EQ(saturate<std::uint32_t>(-5), 0u);
}

} // namespace
} // namespace kvsig
