#include "kvsig/kernel/FloatScales.h"

#include "kvsig/util/WideLoops.h"
#include "support/FakeReader.h"

#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace kvsig {
namespace {

// Every count of 16 bits.
std::vector<std::int16_t> allCounts() {
    std::vector<std::int16_t> counts;
    for (int i = -32768; i < 32768; ++i)
        counts.push_back(static_cast<std::int16_t>(i));
    return counts;
}

// Signs of zeros count.
int differences(double scale, const FloatScale& floats, const std::vector<std::int16_t>& counts) {
    RawRun run{.bytes = static_cast<const std::byte*>(static_cast<const void*>(counts.data())),
               .step = 2,
               .samples = static_cast<std::int64_t>(counts.size()),
               .points = static_cast<std::int64_t>(counts.size()),
               .count = static_cast<std::int64_t>(counts.size())};
    std::vector<float> values(counts.size());
    mapValues(run, {.scale = scale, .floats = &floats}, false, values.data());
    int different = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const auto rounded = static_cast<float>(counts[i] * scale);
        different +=
            std::bit_cast<std::uint32_t>(rounded) != std::bit_cast<std::uint32_t>(values[i]);
    }
    return different;
}

TEST(FloatScales, AScaleIsSplitOnlyWhenNoCountComesOutDifferent) {
    const std::vector<std::int16_t> counts = allCounts();
    int split = 0;
    const std::vector<double> scales{0.1,   1.0 / 3, 6553.5 / 65535,     1e-9, 0x1p-60, 0x1p60,
                                     -0.25, -0.1,    524287.0 / 16777215};
    for (const double scale : scales) {
        FloatScale floats;
        if (!splitScale(scale, RawCode::little16, floats))
            continue;
        ++split;
        EXPECT_EQ(differences(scale, floats, counts), 0) << scale;
    }
    EXPECT_GE(split, 7);
    // 3 * scale lies nearer to the middle of two floats than both floats can tell.
    const double near = (1.0 + 0x1p-24 + 0x1p-52) / 3;
    FloatScale floats;
    EXPECT_FALSE(splitScale(near, RawCode::little16, floats));
    EXPECT_GT(differences(near, floats, counts), 0) << "else this scale shows nothing";
    for (const double unusable :
         {0.0, 1e-300, 1e300, -0.0, std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
        EXPECT_FALSE(splitScale(unusable, RawCode::little16, floats)) << unusable;
    EXPECT_FALSE(splitScale(0.1, RawCode::native32, floats)) << "floats do not hold its counts";
}

TEST(FloatScales, AreTriedOnceManyCountsWereConverted) {
    if (!fusesInWideLoops())
        GTEST_SKIP() << "the processor has no fused multiply-add";
    FloatScales scales;
    constexpr std::int64_t often = 1 << 16;
    EXPECT_EQ(scales.find(0.1, RawCode::little16, often - 1), nullptr);
    EXPECT_EQ(scales.find(0.2, RawCode::little16, 1), nullptr) << "each has its own count";
    EXPECT_EQ(scales.find(0.1, RawCode::little24, 1), nullptr);
    EXPECT_NE(scales.find(0.1, RawCode::native16, often), nullptr);
    EXPECT_NE(scales.find(0.1, RawCode::native16, 1), nullptr);
    EXPECT_EQ(scales.find(0.1, RawCode::native32, often * often), nullptr);
}

// A channel that is read again and again, until its scale was tried and after it.
TEST(FloatScales, ChangeNothingOfWhatAReaderGives) {
    test::FakeRecording recording;
    recording.channels[0].calibration = 0.1;
    recording.raw = [](int, long index) { return static_cast<std::int32_t>(index * 65 - 32768); };
    test::FakeReader reader(recording);
    ASSERT_TRUE(reader.open("n"));
    constexpr double gain = 1.7;
    for (int round = 0; round < 100; ++round) {
        std::vector<float> values(1000);
        ASSERT_EQ(reader.getData(0, 0, 999, values.data(), gain, 0), 1000);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const std::int32_t raw = static_cast<std::int32_t>(i) * 65 - 32768;
            ASSERT_EQ(values[i], static_cast<float>(raw * (0.1 * gain))) << round << ' ' << i;
        }
    }
}

} // namespace
} // namespace kvsig
