#include "kvsig/filters/FilterAttr.h"

#include "kvsig/filters/DisplayText.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace kvsig {
namespace {

using Buffer = std::array<char, filterTextSize>;

std::string cutFreqText(const FilterAttr& attr) { return attr.getCutFreqAsText(Buffer{}.data()); }

std::string timeConstantText(const FilterAttr& attr) {
    return attr.getTimeConstantAsText(Buffer{}.data());
}

// Reads by value: a packed field does not bind to a reference.
double cutoffOf(FilterAttr attr) { return attr.cutoff; }

constexpr FilterAttr example{true, 30.0, 5.0, 40.0};

TEST(FilterAttr, IsARecordWithoutGapsWhoseEveryFieldIsCompared) {
    std::array<char, sizeof(FilterAttr)> bytes{};
    std::memcpy(bytes.data(), &example, bytes.size());
    EXPECT_EQ(bytes[0], 1);
    std::array<double, 3> fields{};
    std::memcpy(fields.data(), bytes.data() + 1, sizeof fields);
    EXPECT_EQ(fields, (std::array<double, 3>{30.0, 5.0, 40.0}));
    for (const FilterAttr& other :
         {FilterAttr{false, 30.0, 5.0, 40.0}, FilterAttr{true, 31.0, 5.0, 40.0},
          FilterAttr{true, 30.0, 6.0, 40.0}, FilterAttr{true, 30.0, 5.0, 41.0}})
        EXPECT_FALSE(example == other);
}

TEST(FilterAttr, OffKeepsTheCutoff) {
    FilterAttr attr = example;
    attr.setCutFreqAsText("(OFF)");
    EXPECT_EQ(attr, (FilterAttr{false, 30.0, 5.0, 40.0}));
    EXPECT_EQ(cutFreqText(attr), "(off)");
    EXPECT_EQ(timeConstantText(attr), "(off)");
    attr.use = true;
    attr.setTimeConstantAsText("(Off)");
    EXPECT_EQ(attr, (FilterAttr{false, 30.0, 5.0, 40.0}));
    attr.setCutFreqAsText("70 Hz");
    EXPECT_EQ(attr, (FilterAttr{true, 70.0, 5.0, 40.0}));
    EXPECT_EQ(cutFreqText(attr), "70 Hz");
}

TEST(FilterAttr, ReadsTheLeadingNumber) {
    for (const char* noNumber :
         {"", "off", "(off) ", " (off)", static_cast<const char*>(nullptr)}) {
        FilterAttr attr{false, 30.0};
        attr.setCutFreqAsText(noNumber);
        EXPECT_EQ(attr, (FilterAttr{true, 0.0})) << noNumber;
    }
    FilterAttr attr;
    attr.setCutFreqAsText("  -1.5e1 Hz");
    EXPECT_EQ(cutoffOf(attr), -15.0);
}

TEST(FilterAttr, TimeConstantsAreTheOtherSideOfTheCutoff) {
    FilterAttr attr;
    attr.setTimeConstantAsText("0.3");
    EXPECT_DOUBLE_EQ(cutoffOf(attr), 1.6 / 3.0);
    EXPECT_EQ(timeConstantText(attr), "0.3 sec");
    EXPECT_EQ(cutFreqText(attr), "0.533 Hz");
    for (const char* nothing : {"", "0", "sec", static_cast<const char*>(nullptr)}) {
        attr.setTimeConstantAsText(nothing);
        EXPECT_EQ(attr, (FilterAttr{true, std::numeric_limits<double>::infinity()}));
    }
    EXPECT_EQ(timeConstantText(FilterAttr{true, 0.0}), "inf sec");
}

TEST(DisplayText, ShowsValuesWithTheirUnits) {
    Buffer buffer{};
    char* const buf = buffer.data();
    EXPECT_EQ(FreqAsText(buf, 70.0), buf);
    EXPECT_STREQ(buf, "70 Hz");
    EXPECT_STREQ(FreqAsText(buf, static_cast<double>(0.053333335F)), "0.0533 Hz");
    EXPECT_STREQ(FreqAsText(buf, 1000.0), "1e+03 Hz");
    EXPECT_STREQ(TimeConstantAsText(buf, 0.125), "0.12 sec");
    EXPECT_STREQ(UvPerMMAsText(buf, 1234.6), "1235 uV");
    EXPECT_STREQ(UvPerMMAsText(buf, -1.2345e-300), "-1.234e-300 uV") << "the longest text";
    for (char* (*const write)(char*, double) : {FreqAsText, TimeConstantAsText, UvPerMMAsText})
        EXPECT_EQ(write(nullptr, 1.0), nullptr);
    EXPECT_EQ(FilterAttr{}.getCutFreqAsText(nullptr), nullptr);
}

} // namespace
} // namespace kvsig
