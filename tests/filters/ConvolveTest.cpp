#include "kvsig/filters/Convolve.h"

#include <climits>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace kvsig {
namespace {

using Values = std::vector<float>;

Values run(Values x, Values h, int nh, int step, int sign, int symmetric) {
    int count = -1;
    const std::unique_ptr<float[]> values(convolve(x.data(), static_cast<int>(x.size()), h.data(),
                                                   nh, step, sign, symmetric, &count));
    return {values.get(), values.get() + count};
}

TEST(Convolve, WeightsEveryPositionAndFoldsSymmetricWeights) {
    const Values x{1, 2, 4, 8, 16, 32};
    EXPECT_EQ(run(x, {1, 10, 100}, 3, 2, +1, 0), (Values{421, 1684}));
    EXPECT_EQ(run(x, {1, 10, 100}, 5, 1, +1, 1), (Values{17 + 100 + 400, 34 + 200 + 800}));
    EXPECT_EQ(run(x, {1, 10, 100}, 5, 1, -1, 1), (Values{-15 - 60, -30 - 120}))
        << "no centre weight in an antisymmetric filter";
    EXPECT_EQ(run(x, {1, 10}, 4, 2, -1, 1), (Values{-7 - 20, -28 - 80}));
}

// The definition, word for word.
Values textbook(const Values& x, const Values& h, int nh, int step, int sign, int symmetric) {
    Values out;
    for (int at = 0; at + nh <= static_cast<int>(x.size()); at += step) {
        const auto sample = [&](int j) { return x[static_cast<std::size_t>(at + j)]; };
        const auto weight = [&](int j) { return h[static_cast<std::size_t>(j)]; };
        float sum = 0.0F;
        for (int j = 0; j < (symmetric ? nh / 2 : nh); ++j) {
            const float folded = !symmetric   ? sample(j)
                                 : (sign < 0) ? sample(j) - sample(nh - 1 - j)
                                              : sample(j) + sample(nh - 1 - j);
            sum += folded * weight(j);
        }
        if (symmetric && sign >= 0 && nh % 2 != 0)
            sum += weight(nh / 2) * sample(nh / 2);
        out.push_back(sum);
    }
    return out;
}

TEST(Convolve, GivesTheTextbookLoopsSumsBitByBit) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> value(-100.0F, 100.0F);
    Values h(46);
    for (float& weight : h)
        weight = value(random);
    for (const int size : {9, 44, 45, 71, 72, 73, 108, 109, 136, 200, 301, 700}) {
        Values x(static_cast<std::size_t>(size));
        for (float& sample : x)
            sample = value(random);
        for (const int taps : {1, 2, 8, 9, 44, 45})
            for (const int step : {1, 2, 3, 7})
                for (const auto& [symmetric, sign] :
                     {std::pair(0, 1), {0, -1}, {1, 1}, {1, 0}, {1, -1}})
                    ASSERT_EQ(run(x, h, taps, step, sign, symmetric),
                              textbook(x, h, taps, step, sign, symmetric))
                        << size << " samples, " << taps << " taps, step " << step << ", "
                        << symmetric << ' ' << sign;
    }
}

TEST(Convolve, HasRoomForEveryStepAndClearsTheRest) {
    float x[7] = {1, 1, 1, 1, 1, 1, 1};
    int count = -1;
    const std::unique_ptr<float[]> result(convolve(x, 7, x, 3, 2, +1, 0, &count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(Values(result.get(), result.get() + 4), (Values{3, 3, 3, 0})) << "7 / 2 + 1 values";

    // A step beyond the missing samples must not make an output out of them.
    const std::unique_ptr<float[]> tooShort(convolve(x, 2, x, 3, 5, +1, 0, &count));
    ASSERT_NE(tooShort, nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(tooShort[0], 0.0F);
}

TEST(Convolve, RefusesWhatCannotBeComputed) {
    float x[2] = {1, 2};
    float h[1] = {1};
    int count = 9;
    EXPECT_EQ(convolve(nullptr, 2, h, 1, 1, 1, 0, &count), nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(convolve(x, 2, nullptr, 1, 1, 1, 0, &count), nullptr);
    EXPECT_EQ(convolve(x, 2, h, -1, 1, 1, 0, &count), nullptr);
    for (const int step : {0, -1, INT_MIN})
        EXPECT_EQ(convolve(x, 2, h, 1, step, 1, 0, &count), nullptr);
    const std::unique_ptr<float[]> negative(convolve(x, INT_MIN, h, INT_MAX, 1, 1, 0, &count));
    EXPECT_NE(negative, nullptr);
    EXPECT_EQ(count, 0);
    const std::unique_ptr<float[]> uncounted(convolve(x, 2, h, 1, INT_MAX, 1, 0, nullptr));
    EXPECT_EQ(uncounted[0], 1.0F);
}

} // namespace
} // namespace kvsig
