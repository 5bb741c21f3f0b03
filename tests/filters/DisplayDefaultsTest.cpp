#include "kvsig/filters/DisplayDefaults.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>

namespace kvsig {
namespace {

TEST(DisplayDefaults, ListsStandInTheirMenuOrder) {
    const std::vector<float>& sensitivity = GetDefValsSensitivity();
    EXPECT_EQ(sensitivity.size(), 18u);
    EXPECT_TRUE(std::is_sorted(sensitivity.begin(), sensitivity.end()));
    const std::vector<float>& low = GetDefValsLowFilter();
    EXPECT_EQ(low.size(), 15u);
    EXPECT_TRUE(std::is_sorted(low.begin(), low.end()));
    EXPECT_EQ(low[0], static_cast<float>(0.16 / 3.0));
    EXPECT_EQ(low[3], static_cast<float>(1.6 / 3.0));
    const std::vector<float>& high = GetDefValsHighFilter();
    EXPECT_EQ(high.size(), 18u);
    EXPECT_TRUE(std::is_sorted(high.begin(), high.end(), std::greater<>()));
}

TEST(DisplayDefaults, SnapsToTheNearestInWholeNumbers) {
    EXPECT_EQ(GetNearestDefVal(GetDefValsHighFilter(), 37.0F), 35.0F);
    EXPECT_EQ(GetNearestDefVal(GetDefValsSensitivity(), 6.0F), 5.0F) << "the earlier of a tie";
    EXPECT_EQ(GetNearestDefVal(GetDefValsSensitivity(), 1e30F), 1.0F);
    const std::vector<float>& low = GetDefValsLowFilter();
    for (const float x : {-3.0F, 0.0F, 0.16F, 1.0F, 1.0533F})
        EXPECT_EQ(GetNearestDefVal(low, x), low[0]) << x;
    EXPECT_EQ(GetNearestDefVal(low, 1.0534F), 0.08F);
    EXPECT_EQ(GetNearestDefVal(low, 33.9F), 30.0F);
    EXPECT_EQ(GetNearestDefVal(low, 36.0F), 40.0F);
}

TEST(DisplayDefaults, SurvivesOddValues) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const float odd : {std::nanf(""), infinity, -infinity})
        EXPECT_EQ(GetNearestDefVal(GetDefValsNotchFilter(), odd), 60.0F);
    EXPECT_EQ(GetNearestDefVal({}, 5.0F), 5.0F);
}

} // namespace
} // namespace kvsig
