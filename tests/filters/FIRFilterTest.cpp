#include "kvsig/filters/Convolve.h"
#include "kvsig/filters/FIRLowPass.h"
#include "kvsig/filters/KaiserLowPass.h"
#include "tests/support/Sine.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <numbers>
#include <vector>

namespace kvsig {
namespace {

constexpr double pi = std::numbers::pi;
constexpr double infinity = std::numeric_limits<double>::infinity();

// The mean of exp(x cos(angle)) over the circle is the Bessel function I0(x); sampling it at equal
// steps is exact to the last digits for the arguments used here.
double besselI0(double x) {
    double sum = 0.0;
    for (int i = 0; i < 256; ++i)
        sum += std::exp(x * std::cos(2.0 * pi * i / 256));
    return sum / 256;
}

void expectKaiserSinc(const std::vector<float>& weights, int taps, double cutoff, double beta) {
    const int middle = taps / 2;
    for (int i = 1; i <= middle; ++i) {
        const double x = i - (taps % 2 == 0 ? 0.5 : 0.0);
        const double r = 2.0 * x / taps;
        const double expected = std::sin(2.0 * pi * cutoff * x) / (pi * x) *
                                besselI0(beta * std::sqrt(1.0 - r * r)) / besselI0(beta);
        EXPECT_NEAR(static_cast<double>(weights.at(static_cast<std::size_t>(middle - i))), expected,
                    1e-7)
            << "tap " << i << " from the centre";
    }
}

TEST(FIRFilter, TakesItsLengthFromWidthAndAttenuationAndIsSymmetric) {
    FIRLowPass filter;
    EXPECT_EQ(filter.design(0.1, 0.05, 40.0), 1);
    EXPECT_EQ(filter.isDesigned(), 1);
    EXPECT_EQ(filter.nNumerWeights(), 45) << "32 / 0.71785 = 44.6, cut, made odd";
    EXPECT_EQ(filter.nPrePts(), 24);
    EXPECT_EQ(filter.nPstPts(), 24);
    EXPECT_FLOAT_EQ(static_cast<float>(filter.getNumerWeight(22)), 0.2F);
    for (int i = 0; i < 22; ++i)
        EXPECT_EQ(filter.getNumerWeight(i), filter.getNumerWeight(44 - i));
    for (const int outside : {-1, 45})
        EXPECT_EQ(filter.getNumerWeight(outside), 0.0);

    EXPECT_EQ(filter.design(0.2, 0.1, 8.0), 1);
    EXPECT_EQ(filter.nNumerWeights(), 1);
    EXPECT_FLOAT_EQ(static_cast<float>(filter.getNumerWeight(0)), 0.4F);
    EXPECT_EQ(filter.design(0.2, 0.1, 7.0), 1) << "a fraction below 0 is cut to 0";
    EXPECT_EQ(filter.nNumerWeights(), 1);
}

TEST(KaiserLowPass, IsAWindowedSinc) {
    // At 20 dB the window is rectangular, at 40 and 60 dB it has the shapes computed here.
    const double beta40 = 0.5842 * std::pow(19.0, 0.4) + 0.07886 * 19.0;
    const double beta60 = 0.1102 * 51.3;
    expectKaiserSinc(kaiserLowPass(45, 0.1, 40.0), 45, 0.1, beta40);
    expectKaiserSinc(kaiserLowPass(45, 0.1, -60.0), 45, 0.1, beta60);
    expectKaiserSinc(kaiserLowPass(31, 0.23, 20.0), 31, 0.23, 0.0);
    expectKaiserSinc(kaiserLowPass(12, 0.23, 40.0), 12, 0.23, beta40);
    for (const double attenuation : {370.0, 400.0, 6000.0}) // either way to compute the window
        expectKaiserSinc(kaiserLowPass(45, 0.1, attenuation), 45, 0.1,
                         0.1102 * (attenuation - 8.7));
    EXPECT_TRUE(kaiserLowPass(45, 0.1, 7000.0).empty());
    EXPECT_EQ(kaiserLowPass(12, 0.23, 40.0).size(), 7u);
    EXPECT_EQ(kaiserLowPass(12, 0.23, 40.0).back(), 0.0F);
}

TEST(FIRFilter, IsTheConvolutionBitByBitHoweverLongTheBlock) {
    FIRLowPass filter;
    for (const double width : {0.5, 0.05, 0.0005}) { // 5, 45, 4457 taps
        ASSERT_EQ(filter.design(0.1, width, 40.0), 1);
        const int taps = filter.nNumerWeights();
        std::vector<float> weights;
        for (int j = 0; j <= taps / 2; ++j)
            weights.push_back(static_cast<float>(filter.getNumerWeight(j)));
        for (const int outputs : {1, 63, 64, 65, 4096, 4097, 4500}) {
            const int count = outputs + taps - 1;
            std::vector<float> x = sine(0.0917, static_cast<std::size_t>(count));
            const std::unique_ptr<float[]> sums(
                convolve(x.data(), count, weights.data(), taps, 1, +1, 1, nullptr));
            std::vector<float> expected(x.size(), 0.0F); // the margins cannot be computed
            std::copy_n(sums.get(), outputs, expected.begin() + taps / 2);
            ASSERT_EQ(filter.apply(x.data(), count), 1);
            ASSERT_EQ(x, expected) << taps << " taps, " << outputs << " outputs";
        }
    }
}

TEST(FIRFilter, LeavesAloneWhatItCannotFilter) {
    FIRLowPass filter;
    std::vector<float> samples = sine(0.3, 45);
    const std::vector<float> before = samples;
    EXPECT_EQ(filter.apply(samples.data(), 45), 0) << "undesigned";
    filter.design(0.1, 0.05, 40.0);
    EXPECT_EQ(filter.apply(nullptr, 45), 0);
    for (const int count : {44, 1, 0, -1, std::numeric_limits<int>::min()})
        EXPECT_EQ(filter.apply(samples.data(), count), 0) << count;
    filter.iterSetPosition(7, samples.data(), 45);
    EXPECT_EQ(filter.iterApply(samples.data(), 45), 0) << "it does not stream";
    EXPECT_EQ(samples, before);
    EXPECT_EQ(filter.apply(samples.data(), 45), 1);
    EXPECT_NE(samples[22], before[22]);
}

TEST(FIRFilter, RefusesAbsurdDesigns) {
    const double nan = std::nan("");
    const double bad[][2] = {{0.0, 40.0},   {-0.05, 40.0},  {nan, 40.0}, {0.05, nan},
                             {1e-9, 40.0},  {0.05, -40.0},  {0.0, 8.0},  {0.05, infinity},
                             {0.05, 1e300}, {1e300, 1e300}, {1e4, 1e5}};
    for (const auto& [width, attenuation] : bad) {
        FIRLowPass filter;
        filter.design(0.1, 0.05, 40.0);
        EXPECT_EQ(filter.design(0.1, width, attenuation), 0) << width << ' ' << attenuation;
        EXPECT_EQ(filter.isDesigned(), 0);
        EXPECT_EQ(filter.getNumerWeight(0), 0.0);
        float sample = 1.0F;
        EXPECT_EQ(filter.apply(&sample, 1), 0);
    }
}

TEST(FIRFilter, GivesOtherTypesTapsWithoutWeights) {
    FIRFilter filter(Filter::highPass);
    EXPECT_EQ(filter.design(0.1, 0.05, 40.0), 0);
    EXPECT_EQ(filter.nNumerWeights(), 45);
    EXPECT_EQ(filter.getNumerWeight(22), 0.0);
    EXPECT_EQ(filter.isDesigned(), 1);
}

} // namespace
} // namespace kvsig
