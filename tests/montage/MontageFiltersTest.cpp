#include "kvsig/montage/FilterDesign.h"
#include "montage/MontageFixture.h"

#include <cmath>
#include <gmock/gmock.h>

namespace kvsig {
namespace {

using test::on;
using test::read;
using test::TestMontage;

std::vector<Filter::FilterType> chainOf(DataSource& source) {
    std::vector<Filter::FilterType> types;
    for (int i = 0; i < source.filters()->count(); ++i)
        types.push_back(source.filters()->filter(i)->type());
    return types;
}

ClientEvent event(int kind, std::optional<double> value, const char* label = "") {
    ClientEvent event;
    event.kind = static_cast<std::int16_t>(kind);
    event.hasValue = value ? 1 : 0;
    event.value = value.value_or(0.0);
    std::char_traits<char>::copy(event.label, label, std::char_traits<char>::length(label) + 1);
    return event;
}

// Row 1 has filters of its own.
class MontageFilters : public testing::Test {
  protected:
    MontageFilters() { montage.add({"Fp1", "F7|0,0,0,0,0.16,30", "Fp1-F7", "Gap1"}); }

    DataSource& row(int index) { return *montage.source(index); }

    TestMontage montage{std::vector<std::string>{"Fp1", "F7"}};
};

TEST_F(MontageFilters, ChainsAreLowPassHighPassNotch) {
    using enum Filter::FilterType;
    montage.setUseCache(false);
    for (int round = 0; round < 2; ++round)
        montage.setFilters(on(2), on(40), on(50, 1));
    EXPECT_EQ(chainOf(row(0)), (std::vector{lowPass, highPass, notch}));
    EXPECT_EQ(chainOf(row(1)), (std::vector{lowPass, highPass, notch}));
    EXPECT_EQ(row(2).filters()->filter(0), row(0).filters()->filter(0)) << "shared";
    EXPECT_NE(row(1).filters()->filter(0), row(0).filters()->filter(0)) << "its own";
    EXPECT_EQ(row(1).filters()->filter(2), row(0).filters()->filter(2)) << "one notch for all";
    EXPECT_TRUE(row(0).useCache());
    EXPECT_DOUBLE_EQ(row(0).filters()->filter(0)->freqCutoff(), 40.0 / 200.0);
    EXPECT_DOUBLE_EQ(row(0).filters()->filter(2)->freqTransition(), 1.0 / 200.0);
    EXPECT_DOUBLE_EQ(row(1).filters()->filter(0)->freqCutoff(), 30.0 / 200.0);
    EXPECT_DOUBLE_EQ(row(1).filters()->filter(1)->freqCutoff(), 1.0 / 200.0);
}

TEST_F(MontageFilters, AFilledMontageHasItsFiltersAtOnce) {
    montage.setHighPass(on(2));
    ASSERT_EQ(montage.createMontage("Recorded"), 1);
    ASSERT_EQ(chainOf(row(0)).size(), 1U);
    // 1 / (1 + t), t = tan(pi 2 / 200)
    EXPECT_NEAR(row(0).filters()->filter(0)->getNumerWeight(0), 0.9695312, 1e-6);
    montage.setReader(nullptr);
    montage.updateFilters();
    ASSERT_EQ(chainOf(row(0)).size(), 1U);
    EXPECT_NEAR(row(0).filters()->filter(0)->getNumerWeight(0), 0.9695312, 1e-6) << "as before";
}

TEST_F(MontageFilters, AnotherCutoffDoesNotServeWhatWasCachedBefore) {
    montage.updateState(event(4, 2.0));
    const std::vector<float> before = read(row(0), 400, 499);
    montage.updateState(event(4, 20.0));
    const std::vector<float> after = read(row(0), 400, 499);
    // A ramp of 2 units a second behind a high-pass of the first order is 2 / (2 pi cutoff).
    EXPECT_NEAR(before.back(), 1 / (2 * 3.14159), 0.01);
    EXPECT_NEAR(after.back(), 1 / (20 * 3.14159), 0.01);
}

TEST_F(MontageFilters, FiltersThatCannotBeAreOff) {
    const std::vector<float> plain = read(row(0), 400, 499);
    for (const double cutoff : {0.0, -5.0, std::nan(""), HUGE_VAL}) {
        montage.setFilters(on(2));
        EXPECT_NE(read(row(0), 400, 499), plain);
        montage.setFilters(on(cutoff), on(cutoff), on(cutoff));
        EXPECT_EQ(read(row(0), 400, 499), plain) << cutoff;
    }
}

TEST_F(MontageFilters, EventsWithoutALabelChangeTheMontage) {
    EXPECT_TRUE(montage.updateState(event(4, 0.5)));
    EXPECT_TRUE(montage.updateState(event(5, 70.0)));
    EXPECT_FALSE(montage.updateState(event(5, 70.0))) << "nothing new";
    EXPECT_TRUE(montage.updateState(event(6, 50.0)));
    EXPECT_EQ(montage.highPass(), on(0.5));
    EXPECT_EQ(montage.lowPass(), on(70));
    EXPECT_EQ(chainOf(row(0)).size(), 3U);
    EXPECT_EQ(chainOf(row(1)).size(), 3U);
    EXPECT_TRUE(montage.updateState(event(5, {})));
    EXPECT_FALSE(montage.lowPass().use);
    EXPECT_EQ(double{montage.lowPass().cutoff}, 70.0);
    EXPECT_TRUE(montage.updateState(event(3, 7.0)));
    EXPECT_EQ(row(2).settings().displayValue, 7);
    EXPECT_EQ(row(3).settings().displayValue, 0) << "a gap has none";

    EXPECT_TRUE(montage.updateState(event(7, {})));
    EXPECT_EQ(montage.notch(), FilterAttr());
    EXPECT_TRUE(row(1).settings().followMontage);
    EXPECT_EQ(chainOf(row(0)).size(), 0U);
    EXPECT_EQ(row(2).settings(), SourceSettings());
    EXPECT_FALSE(row(1).useFilter());
    EXPECT_FALSE(montage.updateState(event(7, {})));
}

TEST_F(MontageFilters, AnEventsNotchHasTheUsualWidthAndOneWithoutAWidthFiltersNothing) {
    const std::vector<float> plain = read(row(0), 400, 499);
    EXPECT_TRUE(montage.updateState(event(6, 50.0)));
    EXPECT_EQ(double{montage.notch().second}, notchWidthFrequency(50, usualNotchHalfWidth, 200));
    EXPECT_FALSE(montage.updateState(event(6, 50.0))) << "nothing new";

    montage.setFilters({}, {}, on(50));
    EXPECT_EQ(chainOf(row(0)), std::vector{Filter::notch});
    EXPECT_EQ(double{montage.notch().second}, 0.0);
    EXPECT_THAT(read(row(0), 400, 499), testing::Pointwise(testing::FloatNear(1e-4F), plain));
    for (const double width : {-1.0, std::nan("")}) { // poles outside the unit circle
        montage.setFilters({}, {}, on(50, width));
        EXPECT_TRUE(chainOf(row(0)).empty()) << width;
    }
    SourceMontage unread;
    EXPECT_TRUE(unread.updateState(event(6, 50.0)));
    EXPECT_EQ(double{unread.notch().second}, 1.0) << "as at a high rate";
}

TEST_F(MontageFilters, EventsWithALabelChangeThatRow) {
    montage.updateState(event(5, 70.0));
    EXPECT_TRUE(montage.updateState(event(4, 5.0, "fp1-F7")));
    EXPECT_FALSE(row(2).settings().followMontage);
    EXPECT_EQ(row(2).settings().highPass, on(5));
    EXPECT_EQ(row(2).settings().lowPass, on(70)) << "what it had until now";
    EXPECT_TRUE(row(0).settings().followMontage);
    const std::vector<float> before = read(row(0), 400, 499);
    EXPECT_TRUE(montage.updateState(event(3, 20.0, "Fp1"))) << "found by its electrode";
    EXPECT_EQ(row(0).settings().displayValue, 20);
    EXPECT_FALSE(row(0).settings().followMontage);
    EXPECT_EQ(row(0).settings().lowPass, on(70));
    EXPECT_EQ(read(row(0), 400, 499), before) << "the filters that it followed are its own now";
    montage.updateState(event(5, 30.0));
    EXPECT_EQ(read(row(0), 400, 499), before);
    montage.updateState(event(5, 70.0));
    EXPECT_FALSE(montage.updateState(event(6, 50.0, "Fp1"))) << "no notch of its own";
    EXPECT_FALSE(montage.updateState(event(4, 5.0, "nobody")));
    EXPECT_FALSE(montage.updateState(event(4, 5.0, "        "))) << "the gap";
    EXPECT_TRUE(montage.updateState(event(7, {}, "Fp1-F7")));
    EXPECT_TRUE(row(2).settings().followMontage);
    EXPECT_EQ(chainOf(row(2)).size(), 1U);
}

TEST_F(MontageFilters, EventsOfOtherKindsAndOddValuesDoNothingOrSwitchOff) {
    for (const int kind : {-1, 0, 2, 8, 1000})
        EXPECT_FALSE(montage.updateState(event(kind, 1.0)));
    montage.updateState(event(4, 1.0));
    for (const double value : {0.0, -1.0, std::nan(""), HUGE_VAL}) {
        montage.updateState(event(4, 1.0));
        EXPECT_TRUE(montage.updateState(event(4, value)));
        EXPECT_FALSE(montage.highPass().use) << value;
    }
    EXPECT_TRUE(montage.updateState(event(3, 0.5)));
    EXPECT_EQ(row(0).settings().displayValue, 1) << "0 would be off";
    EXPECT_TRUE(montage.updateState(event(3, 1e300)));
    ClientEvent unterminated = event(3, 1.0);
    std::fill(std::begin(unterminated.label), std::end(unterminated.label), 'x');
    EXPECT_FALSE(montage.updateState(unterminated));
}

} // namespace
} // namespace kvsig
