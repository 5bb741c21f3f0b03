#include "kvsig/filters/Smooth.h"

#include <algorithm>
#include <climits>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace kvsig {
namespace {

using Values = std::vector<float>;

Values smoothed(Values x, int width) {
    const std::unique_ptr<float[]> result(smooth(x.data(), static_cast<int>(x.size()), width));
    return {result.get(), result.get() + x.size()};
}

TEST(Smooth, AveragesACentredWindowCutAtTheEnds) {
    EXPECT_EQ(smoothed({1, 2, 6, 4}, 3), (Values{1.5, 3, 4, 5}));
    EXPECT_EQ(smoothed({1, 2, 6, 4}, 2), (Values{1.5, 3, 4, 5})) << "even: the next odd width";
    EXPECT_EQ(smoothed({1, 2, 6, 4}, 1), (Values{1, 2, 6, 4}));
    EXPECT_EQ(smoothed({1, 2, 6, 7}, INT_MAX), (Values{4, 4, 4, 4}));
    EXPECT_EQ(smoothed({5}, 9), (Values{5}));
}

TEST(Smooth, AgreesWithEachWindowSummedOnItsOwn) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> value(-1.0F, 1.0F);
    Values x(257);
    for (float& sample : x)
        sample = 1e5F + value(random);
    for (const int half : {1, 2, 60, 127, 128, 200, 256}) {
        const Values result = smoothed(x, 2 * half + 1);
        for (int i = 0; i < 257; ++i) {
            double sum = 0.0;
            const int first = std::max(i - half, 0);
            const int last = std::min(i + half, 256);
            for (int j = first; j <= last; ++j)
                sum += static_cast<double>(x[static_cast<std::size_t>(j)]);
            ASSERT_FLOAT_EQ(result[static_cast<std::size_t>(i)],
                            static_cast<float>(sum / (last - first + 1)));
        }
    }
}

TEST(Smooth, KeepsAHugeSampleInItsOwnWindows) {
    for (const float spike : {3e38F, std::numeric_limits<float>::infinity()}) {
        const Values result = smoothed({1, 1, spike, 1, 1, 1, 1, 1}, 3);
        EXPECT_EQ(Values(result.begin() + 4, result.end()), (Values{1, 1, 1, 1}));
        EXPECT_EQ(result[0], 1.0F);
        EXPECT_GE(result[2], 9e37F);
    }
}

TEST(Smooth, RefusesBadArguments) {
    float x[1] = {1};
    EXPECT_EQ(smooth(nullptr, 1, 1), nullptr);
    for (const int bad : {0, -1, INT_MIN}) {
        EXPECT_EQ(smooth(x, bad, 3), nullptr);
        EXPECT_EQ(smooth(x, 1, bad), nullptr);
    }
}

} // namespace
} // namespace kvsig
