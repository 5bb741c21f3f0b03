#include "kvsig/kernel/TimeBase.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace kvsig {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// Adds an anchor and returns its time as the caller's record holds it afterwards.
double addTo(TimeBase& base, std::int32_t sample, double time) {
    SampleTime anchor{sample, time};
    base.add(anchor);
    return anchor.time;
}

TEST(TimeBase, AClockThatRunsBackwardsHasPassedMidnight) {
    TimeBase base;
    EXPECT_EQ(addTo(base, 0, 82800.0), 82800.0);
    EXPECT_EQ(addTo(base, 1000, 60.0), 86460.0);
    EXPECT_EQ(addTo(base, 2000, 86460.0), 86460.0) << "not earlier, not moved";
    EXPECT_EQ(addTo(base, 3000, 30.0), 2 * 86400.0 + 30.0);
    EXPECT_EQ(base.anchors().size(), 4U);
}

TEST(TimeBase, AnchorsThatDoNotAdvanceAreDropped) {
    TimeBase base;
    addTo(base, 500, 10.0);
    EXPECT_EQ(addTo(base, 500, 5.0), 5.0) << "the caller's record stays as it is";
    addTo(base, 499, 20.0);
    addTo(base, -1, 20.0);
    EXPECT_EQ(base.anchors().size(), 1U);
    for (double time : {infinity, -infinity, std::nan("")})
        addTo(base, 600, time);
    EXPECT_EQ(base.anchors().size(), 1U) << "times that are no times";
}

// 1e12 s are 11574074 days; the anchor lands on the first whole day from its own time of day that
// is not before the last anchor: 5 s past midnight.
TEST(TimeBase, AGapOfManyDaysIsTakenInOneStep) {
    TimeBase base;
    addTo(base, 0, 1e12);
    EXPECT_EQ(addTo(base, 1, 5.0), 11574075.0 * 86400.0 + 5.0);
    addTo(base, 2, 1e22);
    EXPECT_GE(addTo(base, 3, 0.0), 1e22) << "a day is below the resolution here";
    EXPECT_LT(base.anchors()[3].time, 1.001e22);
    constexpr double most = std::numeric_limits<double>::max();
    addTo(base, 4, most);
    EXPECT_EQ(addTo(base, 5, -most), most) << "a gap of more than a double holds";
    TimeBase forward;
    addTo(forward, 0, -most);
    EXPECT_EQ(addTo(forward, 1, most), most) << "later by more than a double holds";
}

// 100 Hz; 0-10 s from 8:00:00, a pause of a minute, then 10-20 s from 8:01:10.
class TimeBaseWithGap : public testing::Test {
  protected:
    TimeBaseWithGap() {
        addTo(base, 0, 28800.0);
        addTo(base, 1000, 28870.0);
    }
    TimeBase base;
    double clock(double elapsed) const { return base.clockTime(elapsed, 100.0); }
    double elapsed(double clockTime) const { return base.elapsedTime(clockTime, 100.0); }
};

TEST_F(TimeBaseWithGap, TheLastAnchorBelowCountsAndInsideTheGapTheNext) {
    EXPECT_EQ(clock(0.0), 28800.0);
    EXPECT_EQ(clock(9.5), 28809.5);
    EXPECT_EQ(clock(10.0), 28870.0);
    EXPECT_EQ(clock(25.0), 28885.0) << "the last segment goes on";
    EXPECT_EQ(clock(-1.0), 28799.0) << "the first one reaches back";
    EXPECT_EQ(elapsed(28805.0), 5.0);
    EXPECT_EQ(elapsed(28810.1), 10.0);
    EXPECT_EQ(elapsed(28870.0), 10.0);
    EXPECT_EQ(elapsed(28872.5), 12.5);
    EXPECT_EQ(elapsed(28790.0), -10.0);
}

TEST_F(TimeBaseWithGap, RatesThatAreNoRatesGiveTheArgumentBack) {
    for (double rate : {0.0, -100.0, std::nan("")}) {
        EXPECT_EQ(base.clockTime(7.5, rate), 7.5) << rate;
        EXPECT_EQ(base.elapsedTime(7.5, rate), 7.5) << rate;
    }
    EXPECT_TRUE(std::isnan(clock(std::nan(""))));
    EXPECT_EQ(TimeBase().clockTime(7.5, 100.0), 7.5) << "no anchors";
    EXPECT_EQ(TimeBase().elapsedTime(7.5, 100.0), 7.5) << "no anchors";
}

TEST(TimeBase, TimesBeforeALateFirstAnchorCountBackFromIt) {
    TimeBase base;
    addTo(base, 512, 100.0); // 256 Hz: sample 0 is at 98 s
    EXPECT_EQ(base.clockTime(0.0, 256.0), 98.0);
    EXPECT_EQ(base.elapsedTime(98.0, 256.0), 0.0);
    // A clock that was set back by the length of the pause: of two segments the later one holds.
    addTo(base, 1024, 100.0);
    EXPECT_EQ(base.elapsedTime(100.0, 256.0), 4.0);
}

} // namespace
} // namespace kvsig
