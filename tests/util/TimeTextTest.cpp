#include "kvsig/util/TimeText.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace kvsig {
namespace {

std::string clockOf(double t, bool seconds, bool hundredths = false, bool days = false) {
    char buf[realToTimeSize];
    return RealToTime(t, buf, seconds, hundredths, days);
}

TEST(TimeText, ReadsFieldsFromTheRight) {
    EXPECT_EQ(TimeToReal("1:02:03:04.5"), 93784.5);
    EXPECT_EQ(TimeToReal("01:30"), 90.0);
    EXPECT_EQ(TimeToReal("12.5"), 12.5);
    EXPECT_EQ(TimeToReal("9:1:02:03:04"), 93784.0) << "a field beyond days is ignored";
    EXPECT_EQ(TimeToReal("-7.25"), -7.25);
    EXPECT_EQ(TimeToReal(""), 0.0);
    EXPECT_EQ(TimeToReal(nullptr), 0.0);
    EXPECT_EQ(TimeToReal("x:y"), 0.0);
    EXPECT_EQ(TimeToReal("1.5:30"), 1.5) << "a colon after the point is no clock text";
    EXPECT_EQ(TimeToReal((std::string(31, '0') + "79").c_str()), 7.0)
        << "only 32 characters are looked at";
}

TEST(TimeText, WritesClockTexts) {
    EXPECT_EQ(clockOf(59.996, true), "00:01:00");
    EXPECT_EQ(clockOf(59.996, true, true), "00:01:00.00");
    EXPECT_EQ(clockOf(59.99, true, true), "00:00:59.99");
    EXPECT_EQ(clockOf(-3661, true), "-01:01:01");
    EXPECT_EQ(clockOf(90061, true, false, true), "1:01:01:01");
    EXPECT_EQ(clockOf(90061, true), "25:01:01");
    EXPECT_EQ(clockOf(3660, false), "01:01");
}

TEST(TimeText, HoldsExtremeTimes) {
    EXPECT_EQ(clockOf(std::nan(""), true, true, true), "0:00:00:00.00");
    for (const double t : {1e300, -1e300, std::numeric_limits<double>::infinity()})
        EXPECT_LT(clockOf(t, true, true, true).size(), std::size_t{realToTimeSize});
}

TEST(TimeText, PlainSecondsReplaceClockTexts) {
    SetPlainSeconds(true);
    EXPECT_EQ(clockOf(90.256, true, false, true), "90.26");
    EXPECT_LT(clockOf(1e300, true).size(), std::size_t{realToTimeSize});
    SetPlainSeconds(false);
    EXPECT_EQ(clockOf(90.256, true), "00:01:30");
}

} // namespace
} // namespace kvsig
