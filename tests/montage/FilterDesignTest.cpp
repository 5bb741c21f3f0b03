#include "kvsig/montage/FilterDesign.h"

#include "kvsig/filters/IIRNotch.h"
#include "support/Sine.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace kvsig {
namespace {

// Half of the power is gone at the stated distance, nothing is left at the middle, and 10 Hz away
// nearly all passes.
TEST(FilterDesign, ANotchIsAsWideAsItIsMeantToBe) {
    for (const double rate : {200.0, 256.0, 1000.0, 5000.0})
        for (const double cutoff : {50.0, 60.0}) {
            IIRNotch notch;
            const double second = notchWidthFrequency(cutoff, usualNotchHalfWidth, rate);
            ASSERT_EQ(designFilter(notch, {.use = true, .cutoff = cutoff, .second = second}, rate),
                      1);
            const auto gainAt = [&](double hertz) {
                const auto seconds = static_cast<std::size_t>(rate);
                auto samples = sine(hertz / rate, 20 * seconds);
                notch.apply(samples.data(), static_cast<int>(samples.size()));
                return amplitudeAt(hertz / rate, samples, 10 * seconds, 10 * seconds);
            };
            EXPECT_LT(gainAt(cutoff), 1e-3) << rate;
            EXPECT_NEAR(gainAt(cutoff - 1.0), std::sqrt(0.5), 0.02) << rate << " " << cutoff;
            EXPECT_NEAR(gainAt(cutoff + 1.0), std::sqrt(0.5), 0.02) << rate << " " << cutoff;
            EXPECT_GT(gainAt(cutoff - 10.0), 0.99) << rate;
        }
}

TEST(FilterDesign, NothingIsDesignedThatWouldRunAway) {
    IIRNotch notch;
    for (const double bad : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(designFilter(notch, {.use = true, .cutoff = 50.0}, bad), 0) << bad;
        EXPECT_EQ(designFilter(notch, {.use = true, .cutoff = bad}, 256.0), 0) << bad;
        EXPECT_FALSE(isFilterOn({.use = true, .cutoff = bad})) << bad;
    }
    EXPECT_FALSE(isFilterOn({.use = false, .cutoff = 50.0}));
}

} // namespace
} // namespace kvsig
