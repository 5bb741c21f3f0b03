#include "kvsig/filters/IIRFilter.h"

#include "kvsig/filters/IIRHighPass.h"
#include "kvsig/filters/IIRLowPass.h"
#include "kvsig/filters/IIRNotch.h"
#include "tests/support/Sine.h"

#include <cmath>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <numbers>
#include <vector>

namespace kvsig {
namespace {

constexpr double pi = std::numbers::pi;
const double nan = std::nan("");
constexpr double infinity = std::numeric_limits<double>::infinity();

using Values = std::vector<float>;

Values filtered(Filter& filter, Values samples) {
    EXPECT_EQ(filter.apply(samples.data(), static_cast<int>(samples.size())), 1);
    return samples;
}

void expectClose(const Values& values, const Values& expected) {
    ASSERT_EQ(values.size(), expected.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_FLOAT_EQ(values[i], expected[i]) << i;
}

double measuredGain(Filter& filter, double frequency) {
    constexpr std::size_t size = 40000;
    return amplitudeAt(frequency, filtered(filter, sine(frequency, size)), size / 2, size / 2);
}

// At a quarter of the sampling rate the tangent is 1, which makes the coefficients round numbers.

TEST(IIRFilter, FirstOrderWeightsFollowFromTheTangent) {
    IIRLowPass low;
    IIRHighPass high;
    EXPECT_EQ(low.isDesigned(), 0);
    EXPECT_EQ(low.design(0.25, 0.0, 0.0), 1);
    EXPECT_EQ(low.isDesigned(), 1);
    high.design(0.25, 0.0, 0.0);
    expectClose(filtered(low, {7, 3, 5, -2}), {7, 5, 4, 1.5});
    expectClose(filtered(high, {7, 3, 5, -2}), {7, -2, 1, -3.5});
    low.design(1.0 / 6.0, 0.0, 0.0); // tan(pi / 6) = 1 / sqrt(3)
    high.design(1.0 / 6.0, 0.0, 0.0);
    EXPECT_DOUBLE_EQ(low.getNumerWeight(1), 1.0 / (1.0 + std::sqrt(3.0)));
    EXPECT_DOUBLE_EQ(high.getNumerWeight(1), -std::sqrt(3.0) / (1.0 + std::sqrt(3.0)));
    for (const IIRFilter* filter : std::initializer_list<IIRFilter*>{&low, &high})
        EXPECT_NEAR(filter->getDenomWeight(1), 2.0 - std::sqrt(3.0), 1e-15);
}

TEST(IIRFilter, NotchOfAQuarterOfTheRate) {
    IIRNotch filter;
    EXPECT_EQ(filter.design(0.25, 0.25, 0.0), 1);
    const double expected[] = {0.4, 0.0, 0.4, -0.4, -0.2};
    const double weights[] = {filter.getNumerWeight(0), filter.getNumerWeight(1),
                              filter.getNumerWeight(2), filter.getDenomWeight(1),
                              filter.getDenomWeight(2)};
    for (int i = 0; i < 5; ++i)
        EXPECT_NEAR(weights[i], expected[i], 1e-15) << i;
    for (const int outside : {-1, 3})
        EXPECT_EQ(filter.getNumerWeight(outside), 0.0);
    for (const int outside : {-1, 0, 3})
        EXPECT_EQ(filter.getDenomWeight(outside), 0.0);
    expectClose(filtered(filter, {1, 2, 3, 4}), {1, 2, 0.6F, 1.76F});
}

TEST(IIRFilter, GainsFollowTheAnalogPrototypes) {
    const double t = std::tan(pi * 0.08);
    const double u = std::tan(pi * 0.01);
    IIRLowPass low;
    IIRHighPass high;
    IIRNotch notch;
    low.design(0.08, 0.0, 0.0);
    high.design(0.08, 0.0, 0.0);
    notch.design(0.08, 0.01, 0.0);
    for (const double frequency : {0.01, 0.05, 0.075, 0.08, 0.085, 0.1, 0.2, 0.45}) {
        const double w = std::tan(pi * frequency);
        EXPECT_NEAR(measuredGain(low, frequency), t / std::hypot(t, w), 1e-4) << frequency;
        EXPECT_NEAR(measuredGain(high, frequency), w / std::hypot(t, w), 1e-4) << frequency;
        EXPECT_NEAR(measuredGain(notch, frequency),
                    std::fabs(t * t - w * w) / std::hypot(t * t + u * u - w * w, 2.0 * u * w), 1e-4)
            << frequency;
    }
    EXPECT_LT(measuredGain(notch, 0.08), 1e-5);
}

TEST(IIRFilter, PassesEverythingFromTheNyquistFrequencyOn) {
    const Values samples{3, -1, 4, 1, -5};
    for (const double cutoff : {0.5, 0.49999988079071045, 7.0, infinity})
        for (const auto type : {Filter::lowPass, Filter::highPass, Filter::notch}) {
            IIRFilter filter(type);
            filter.design(0.1, 0.01, 0.0); // must be forgotten
            EXPECT_EQ(filter.design(cutoff, 0.01, 0.0), 1);
            EXPECT_EQ(filtered(filter, samples), samples);
            EXPECT_EQ(filter.design(0.1, cutoff, 0.0), 1);
            EXPECT_EQ(filtered(filter, samples) == samples, type == Filter::notch)
                << "only a notch looks at the second frequency";
        }
}

TEST(IIRFilter, TypesOutsideTheFamilyDoNothing) {
    IIRFilter filter(Filter::list);
    EXPECT_EQ(filter.design(0.1, 0.2, 3.0), 0);
    EXPECT_EQ(filter.freqTransition(), 0.2) << "the settings are kept";
    EXPECT_EQ(filter.nNumerWeights(), 0);
    float sample = 1;
    EXPECT_EQ(filter.apply(&sample, 1), 0);
    EXPECT_EQ(filter.design(0.5, 0.0, 0.0), 1) << "the identity comes before the type";
}

TEST(IIRFilter, RunInIsOnePeriodAndForANotchTwenty) {
    IIRHighPass high;
    IIRNotch notch;
    const auto prePts = [](Filter& filter, double cutoff) {
        filter.design(cutoff, 0.01, 0.0);
        EXPECT_EQ(filter.nPstPts(), 0);
        return filter.nPrePts();
    };
    EXPECT_EQ(high.nPrePts(), 0) << "undesigned";
    EXPECT_EQ(prePts(high, 0.03), 33);
    EXPECT_EQ(prePts(notch, 0.03), 660) << "the period is cut first";
    EXPECT_EQ(prePts(high, 0.7), 1);
    EXPECT_EQ(prePts(high, 1.5), 0);
    for (Filter* filter : std::initializer_list<Filter*>{&high, &notch}) {
        for (const double none : {0.0, -0.0, -0.1, -infinity, infinity, nan})
            EXPECT_EQ(prePts(*filter, none), 0) << none;
        for (const double slow : {1e-8, 1e-300, std::numeric_limits<double>::denorm_min()})
            EXPECT_EQ(prePts(*filter, slow), IIRFilter::maxPrePts) << slow;
    }
    EXPECT_EQ(prePts(notch, 1.0 / 209715.5), 4194300) << "just below the ceiling";
}

TEST(IIRFilter, KeepsTheStreamsPosition) {
    IIRLowPass filter;
    filter.design(0.1, 0.0, 0.0);
    Values samples = sine(0.1, 10);
    filter.iterSetPosition(1000, samples.data(), 10);
    EXPECT_EQ(filter.iterGetPosition(), 1000);
    EXPECT_EQ(filter.iterApply(samples.data(), 7), 1);
    EXPECT_EQ(filter.iterApply(nullptr, 3), 0);
    EXPECT_EQ(filter.iterApply(samples.data(), -5), 1);
    EXPECT_EQ(filter.iterGetPosition(), 1010);
    filter.iterSetPosition(std::numeric_limits<long>::max() - 1, nullptr, 0);
    filter.iterApply(samples.data(), 10);
    EXPECT_EQ(filter.iterGetPosition(), std::numeric_limits<long>::max());
}

TEST(IIRFilter, AStreamIsOnePassHoweverItStarts) {
    const Values samples{1, 2, 3, 4};
    for (const auto type : {Filter::lowPass, Filter::highPass, Filter::notch}) {
        IIRFilter filter(type);
        filter.design(0.25, 0.25, 0.0);
        const Values expected = filtered(filter, samples);
        for (const int primed : {0, 1, 2, 3}) {
            Values warmUp = {9, 9, 9};
            filter.iterSetPosition(0, warmUp.data(), 3); // a history that must be forgotten
            Values stream = samples;
            filter.iterSetPosition(0, primed > 0 ? stream.data() : nullptr, primed);
            filter.iterApply(stream.data() + primed, 4 - primed);
            EXPECT_EQ(stream, expected) << primed;
        }
    }
    IIRLowPass silent;
    silent.design(0.25, 0.0, 0.0);
    Values unstarted{8, 8};
    EXPECT_EQ(silent.iterApply(unstarted.data(), 2), 1);
    expectClose(unstarted, {4, 8});
}

TEST(IIRFilter, SurvivesHostileSettingsAndSamples) {
    const Values values{0.0F, -1.0F, 3e38F, static_cast<float>(infinity), static_cast<float>(nan)};
    for (const double cutoff : {-1e300, -0.5, -0.25, 0.0, 1e-300, nan, -infinity})
        for (const double width : {-0.25, 0.0, 0.3, nan})
            for (const auto type : {Filter::lowPass, Filter::highPass, Filter::notch}) {
                IIRFilter filter(type);
                EXPECT_EQ(filter.design(cutoff, width, nan), 1);
                filtered(filter, values);
                EXPECT_EQ(filter.apply(nullptr, 5), 0);
                for (const int none : {0, -1, std::numeric_limits<int>::min()})
                    EXPECT_EQ(filter.apply(Values(1).data(), none), 1);
            }
}

} // namespace
} // namespace kvsig
