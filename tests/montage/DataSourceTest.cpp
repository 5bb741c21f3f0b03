#include "kvsig/filters/FIRLowPass.h"
#include "kvsig/filters/IIRNotch.h"
#include "montage/ScriptedSource.h"
#include "support/FakeReader.h"

#include <climits>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <random>

namespace kvsig {
namespace {

using test::on;
using test::read;
using test::ScriptedSource;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

using Samples = std::vector<float>;

// 10 Hz, 1000 samples.
class DataSourceTest : public testing::Test {
  protected:
    DataSourceTest() { reader.open("scripted"); }

    test::FakeReader reader;
    ScriptedSource source{reader};
};

// Samples `first`..`last` of the scripted source.
Samples ramp(long first, long last, double scale = 1.0) {
    Samples samples;
    for (long i = first; i <= last; ++i)
        samples.push_back(static_cast<float>((1000.0 + static_cast<double>(i)) * scale));
    return samples;
}

Samples part(const Samples& samples, std::size_t first, std::size_t count) {
    const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(first);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

TEST_F(DataSourceTest, TheCacheServesAPrefixInTheGainAskedFor) {
    read(source, 100, 199);
    source.takeCalls();
    source.cache()->pData[50] = 5.0F; // shows who answers
    const Samples got = read(source, 150, 250, 2.0);
    EXPECT_THAT(source.calls, ElementsAre(test::SourceCall{200, 250, 2.0}));
    EXPECT_EQ(got[0], 10.0F);
    EXPECT_EQ(part(got, 1, 100), ramp(151, 250, 2.0));
    EXPECT_EQ(source.cache()->pData[0], 10.0F) << "the prefix is kept with the rest";
    source.takeCalls();
    EXPECT_EQ(read(source, 160, 250, -0.5), ramp(160, 250, -0.5));
    EXPECT_EQ(read(source, 151, 250), ramp(151, 250)) << "a request served whole changes nothing";
    EXPECT_THAT(source.takeCalls(), IsEmpty());
    EXPECT_EQ(read(source, 149, 160), ramp(149, 160));
    EXPECT_THAT(source.calls, ElementsAre(test::SourceCall{149, 160, 1.0})) << "it starts outside";
}

TEST_F(DataSourceTest, SwitchingTheFilterEmptiesTheCacheSwitchingTheCacheDoesNot) {
    read(source, 0, 9);
    source.setUseCache(false);
    source.setUseFilter(true);
    read(source, 0, 4);
    EXPECT_EQ(source.takeCalls().size(), 2U) << "the cache is not asked";
    EXPECT_EQ(source.cache()->length(), 10) << "nor written";
    source.setUseCache(true);
    for (const bool use : {false, true}) {
        read(source, 0, 9);
        source.setUseFilter(use);
        EXPECT_EQ(source.cache()->length(), 0);
    }
}

TEST_F(DataSourceTest, DefaultsSeedTheSwitchesOfNewSources) {
    SetDataSourceDefaults(false, true);
    ScriptedSource uncached(reader);
    SetDataSourceDefaults(true, false);
    ScriptedSource unfiltered(reader);
    SetDataSourceDefaults(true, true);
    EXPECT_FALSE(uncached.useCache());
    EXPECT_TRUE(uncached.useFilter());
    EXPECT_TRUE(unfiltered.useCache());
    EXPECT_FALSE(unfiltered.useFilter());
}

// Wants 10 samples before a block and 5 behind it, and adds to each sample its place in the block.
class PlaceFilter : public IIRLowPass {
  public:
    std::vector<int> counts;
    int nPrePts() const override { return 10; }
    int nPstPts() const override { return 5; }
    int apply(float* data, int count) override {
        counts.push_back(count);
        for (int i = 0; i < count; ++i)
            data[i] += static_cast<float>(i);
        return 1;
    }
};

TEST_F(DataSourceTest, FiltersGetTheRangeWithTheirRunInAndRunOut) {
    PlaceFilter filter;
    source.filters()->addNext(&filter);
    Samples expected = ramp(100, 199);
    for (std::size_t i = 0; i < expected.size(); ++i)
        expected[i] += static_cast<float>(10 + i);
    int delivered = 0;
    EXPECT_EQ(read(source, 100, 199, 1.0, &delivered), expected);
    EXPECT_EQ(delivered, 100);
    EXPECT_THAT(source.takeCalls(), ElementsAre(test::SourceCall{90, 204, 1.0}));
    EXPECT_THAT(filter.counts, ElementsAre(115));
    // Behind a cached prefix only the rest is widened.
    read(source, 150, 209);
    EXPECT_THAT(source.calls, ElementsAre(test::SourceCall{190, 214, 1.0}));
}

TEST_F(DataSourceTest, MissingSamplesAreZerosAndCountsAreNotBelieved) {
    PlaceFilter filter;
    source.filters()->addNext(&filter);
    const Samples whole = read(source, 100, 199);
    const struct {
        int answered, filtered, delivered;
    } cases[] = {{60, 60, 45}, {15, 15, 0}, {12, 12, 0}, {0, 0, 0}, {-3, 0, 0}, {900, 115, 100}};
    for (const auto& c : cases) {
        source.answer = [&c](int) { return c.answered; };
        source.flushCache();
        int count = -1;
        Samples expected = whole;
        std::fill(expected.begin() + c.delivered, expected.end(), 0.0F);
        EXPECT_EQ(read(source, 100, 199, 1.0, &count), expected);
        EXPECT_EQ(count, c.delivered) << "those behind the run-in";
        EXPECT_EQ(filter.counts.back(), c.filtered);
        EXPECT_EQ(source.cache()->length(), 100) << "the whole range is kept all the same";
    }
    source.setUseFilter(false);
    source.answer = [](int) { return 3; };
    read(source, 90, 99);
    int count = 0;
    EXPECT_EQ(part(read(source, 95, 104, 1.0, &count), 5, 5), (Samples{1100, 1101, 1102, 0, 0}));
    EXPECT_EQ(count, 8) << "5 cached, 3 computed";
}

TEST_F(DataSourceTest, ImpossibleRangesGiveNothingAndAreNotComputed) {
    float untouched = -7.0F;
    for (const auto& [first, last] : {std::pair{5L, 4L},
                                      {LONG_MAX, LONG_MIN},
                                      {LONG_MIN, LONG_MAX},
                                      {0L, long{INT_MAX}},
                                      {-1L, long{INT_MAX}}})
        EXPECT_EQ(source.getData(first, last, &untouched, 1.0), 0) << first << ".." << last;
    EXPECT_EQ(source.getData(0, 0, nullptr, 1.0), 0);
    for (const long count : {0L, -1L, LONG_MIN, LONG_MAX})
        EXPECT_EQ(source.iterGetData(count, &untouched, 1.0), 0) << count;
    EXPECT_EQ(source.iterGetData(1, nullptr, 1.0), 0);
    EXPECT_EQ(untouched, -7.0F);
    EXPECT_EQ(source.iterGetPosition(), -1);
    EXPECT_THAT(source.calls, IsEmpty());
}

// Run-in and run-out would lie beyond what an index can say.
TEST_F(DataSourceTest, TheEndsOfTheIndexRangeAreSafe) {
    PlaceFilter filter;
    source.filters()->addNext(&filter);
    for (const long first : {LONG_MIN, LONG_MIN + 9, LONG_MAX - 4, LONG_MAX - 8})
        EXPECT_THAT(read(source, first, first + 4), Each(0.0F)) << first;
    EXPECT_THAT(source.calls, IsEmpty());
    source.iterSetPosition(LONG_MAX, 1.0);
    EXPECT_EQ(source.iterGetPosition(), INT_MAX);
    source.iterSetPosition(LONG_MIN, 1.0);
    EXPECT_EQ(source.iterGetPosition(), INT_MIN);
    source.setUseFilter(false);
    EXPECT_THAT(read(source, LONG_MAX - 1, LONG_MAX), Each(testing::Gt(0.0F)));
}

TEST_F(DataSourceTest, AnOddScaleDoesNotSpoilLaterAnswers) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double odd : {0.0, std::nan(""), infinity, -infinity, 1e-310}) {
        read(source, 0, 9, odd);
        EXPECT_EQ(read(source, 0, 9, 1.0), ramp(0, 9)) << odd;
    }
}

TEST_F(DataSourceTest, SamplesBeforeTheStartAreCachedButMinusOneAloneIsNot) {
    read(source, -5, 4);
    source.takeCalls();
    EXPECT_EQ(read(source, -1, -1), ramp(-1, -1));
    EXPECT_THAT(source.takeCalls(), IsEmpty());
    source.flushCache();
    // First and last of -1 say that the cache is empty.
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(read(source, -1, -1), ramp(-1, -1));
    EXPECT_EQ(source.calls.size(), 2U);
}

TEST_F(DataSourceTest, AddingWantsExactlyTheCachedRange) {
    read(source, 10, 14);
    Samples more = {1, 2, 3, 4, 5, 6};
    for (const auto& [first, last] : {std::pair{10L, 13L}, {10L, 15L}, {9L, 14L}, {11L, 14L}})
        EXPECT_FALSE(source.addToCache(first, last, more.data()));
    EXPECT_EQ(read(source, 10, 14), ramp(10, 14));
    EXPECT_TRUE(source.addToCache(10, 14, more.data()));
    EXPECT_EQ(read(source, 10, 14), (Samples{1011, 1013, 1015, 1017, 1019}));
}

TEST_F(DataSourceTest, ARangeThatTheRecordCannotSayLeavesTheCacheAsItWas) {
    read(source, 10, 14);
    float sample = 0.0F;
    EXPECT_FALSE(source.writeCache(14, 10, &sample, 1.0));
    EXPECT_FALSE(source.allocCache(0, INT_MAX, 1.0));
    const long far = long{INT_MAX} + 1;
    EXPECT_FALSE(source.allocCache(far, far, 1.0));
    EXPECT_EQ(read(source, far, far + 1), ramp(far, far + 1));
    EXPECT_EQ(source.cache()->nFirst, 10);
    EXPECT_EQ(source.cache()->length(), 5);
}

TEST_F(DataSourceTest, TheCachesRecordIsCopiedOntoItselfAndMayBeEmpty) {
    read(source, 10, 14);
    DataCache& cache = *source.cache();
    const DataCache& itself = cache;
    cache = itself;
    EXPECT_EQ(cache.nFirst, 10);
    EXPECT_EQ(cache.length(), 5);
    cache = DataCache();
    EXPECT_EQ(cache.length(), 0);
    cache.nFirst = 2; // a host's slip: the last one comes before it
    EXPECT_EQ(cache.length(), 0);
}

// Whole numbers without a pattern, so that sums and gains by powers of two are exact.
double noise(long i) {
    auto x = static_cast<std::uint32_t>(i) * 2654435761U;
    x = (x ^ (x >> 15U)) * 2246822519U;
    return static_cast<double>((x >> 16U) % 2001U) - 1000.0;
}

TEST_F(DataSourceTest, CachedAndUncachedAnswersAgree) {
    FIRLowPass filter;
    ASSERT_EQ(filter.design(0.2, 0.1, 40.0), 1);
    ScriptedSource uncached(reader);
    uncached.setUseCache(false);
    std::mt19937 random(7);
    for (ScriptedSource* each : {&source, &uncached}) {
        each->value = noise;
        each->filters()->addNext(&filter);
    }
    constexpr double scales[] = {1.0, 2.0, -0.5, 0.0, -4.0};
    for (int i = 0; i < 500; ++i) {
        const long first = static_cast<long>(random() % 120) - 40;
        const long last = first + static_cast<long>(random() % 60);
        const double scale = scales[random() % 5];
        if (random() % 16 == 0)
            for (ScriptedSource* each : {&source, &uncached})
                each->setUseFilter(!each->useFilter());
        const Samples expected = read(uncached, first, last, scale);
        ASSERT_EQ(read(source, first, last, scale), expected) << first << ".." << last;
    }
    EXPECT_LT(source.calls.size() + 30, uncached.calls.size()) << "the cache was put to the test";
}

class StreamTest : public DataSourceTest {
  protected:
    StreamTest() {
        SourceSettings settings;
        settings.lowPass = on(3.0);
        settings.highPass = on(0.1);
        source.setSettings(settings);
        source.appendOwnFilters(10.0);
        notch.design(0.25, 0.01, 0.0); // a run-in of 80 samples; the high-pass wants 100
        source.filters()->addNext(&notch);
        source.value = noise;
    }
    IIRNotch notch;
};

TEST_F(StreamTest, BlocksOfAnySizeGiveWhatOnePassGives) {
    const Samples whole = read(source, 300, 899, 0.5);
    source.cache()->pData[0] += 1.0F; // a stream that asked the cache would show it
    std::mt19937 random(11);
    for (int run = 0; run < 5; ++run) {
        source.iterSetPosition(300, 0.5);
        Samples streamed;
        while (streamed.size() < whole.size()) {
            const auto left = static_cast<long>(whole.size() - streamed.size());
            const long count = std::min(static_cast<long>(random() % 40), left);
            ASSERT_EQ(source.iterGetPosition(), 300 + static_cast<long>(streamed.size()));
            Samples block(static_cast<std::size_t>(count));
            ASSERT_EQ(source.iterGetData(count, block.data(), 0.5), count);
            streamed.insert(streamed.end(), block.begin(), block.end());
        }
        ASSERT_EQ(streamed, whole);
    }
    EXPECT_EQ(source.cache()->nLast, 899);
}

TEST_F(StreamTest, WarmsUpOnTheSamplesBeforeItsPosition) {
    source.iterSetPosition(500, 2.0);
    EXPECT_THAT(source.takeCalls(), ElementsAre(test::SourceCall{400, 499, 2.0}));
    source.setUseFilter(false);
    source.iterSetPosition(250, 1.0);
    EXPECT_THAT(source.calls, IsEmpty());
    Samples block(3);
    EXPECT_EQ(source.iterGetData(3, block.data(), 1.0), 3);
    EXPECT_EQ(block, (Samples{float(noise(250)), float(noise(251)), float(noise(252))}));
}

TEST_F(DataSourceTest, AStreamAdvancesByWhatWasDelivered) {
    source.answer = [](int wanted) { return wanted - 2; };
    source.iterSetPosition(50, 1.0);
    Samples block(5, -7.0F);
    EXPECT_EQ(source.iterGetData(5, block.data(), 1.0), 3);
    EXPECT_EQ(block, (Samples{1050, 1051, 1052, 0, 0}));
    EXPECT_EQ(source.iterGetPosition(), 53);
    source.answer = [](int) { return -1; };
    EXPECT_EQ(source.iterGetData(5, block.data(), 1.0), 0);
    EXPECT_THAT(block, Each(0.0F));
    EXPECT_EQ(source.iterGetPosition(), 53);
}

TEST_F(DataSourceTest, OwnFiltersAreThoseThatCanBe) {
    source.setUseFilter(false);
    SourceSettings settings;
    for (const double cutoff : {0.0, -1.6, HUGE_VAL, std::nan("")}) {
        settings.lowPass = settings.highPass = on(cutoff);
        source.setSettings(settings);
        source.appendOwnFilters(10.0);
        EXPECT_EQ(source.filters()->count(), 0) << cutoff;
        EXPECT_FALSE(source.useFilter());
    }
    settings.lowPass = on(3.0);
    settings.highPass = on(0.5);
    source.setSettings(settings);
    for (const double rate : {0.0, -1.0, std::nan("")})
        source.appendOwnFilters(rate);
    EXPECT_TRUE(source.useFilter());
    EXPECT_EQ(source.filters()->count(), 6);
    EXPECT_EQ(source.filters()->isDesigned(), 0) << "without a rate";
    EXPECT_EQ(read(source, 0, 9), ramp(0, 9));
    source.appendOwnFilters(10.0);
    EXPECT_EQ(source.filters()->filter(6)->type(), Filter::lowPass);
    EXPECT_EQ(source.filters()->filter(6)->freqCutoff(), 0.3);
    EXPECT_EQ(source.filters()->filter(7)->freqCutoff(), 0.05);
}

TEST_F(DataSourceTest, AGrownChainDoesNotServeWhatWasCachedBefore) {
    SourceSettings settings;
    settings.lowPass = on(0.5);
    source.setSettings(settings);
    EXPECT_TRUE(source.useFilter());
    const std::vector<float> plain = read(source, 0, 9);
    source.appendOwnFilters(10.0);
    // Far into a ramp, a low-pass of the first order stays (1 - t) / 2 t + 1 / 2 samples behind it,
    // t = tan(pi 0.5 / 10): 3.16.
    EXPECT_NEAR(read(source, 0, 9).back(), plain.back() - 3.16, 0.01);
}

TEST_F(StreamTest, CopiesFilterWithTheirOwnFilters) {
    read(source, 0, 9);
    ScriptedSource assigned(reader);
    Samples expected;
    {
        ScriptedSource original = source;
        expected = read(original, 300, 399, 2.0);
        assigned = original;
        const ScriptedSource& itself = assigned;
        assigned = itself;
        ASSERT_EQ(assigned.filters()->count(), 3);
        EXPECT_EQ(assigned.filters()->filter(2), &notch) << "shared by all";
        original.cache()->pData[0] += 1.0F;
    }
    assigned.takeCalls();
    EXPECT_EQ(read(assigned, 300, 399, 2.0), expected) << "the cache came along";
    EXPECT_THAT(assigned.takeCalls(), IsEmpty());
    assigned.flushCache();
    EXPECT_EQ(read(assigned, 300, 399, 2.0), expected);
}

TEST_F(DataSourceTest, ACopiedChainOwnsNothing) {
    source.filters()->setDeleteList(true);
    source.filters()->addNext(new PlaceFilter);
    ScriptedSource copy = source;
    EXPECT_FALSE(copy.filters()->deleteList());
    ScriptedSource target(reader);
    target.filters()->setDeleteList(true);
    target.filters()->addNext(new PlaceFilter);
    target = source;
    EXPECT_FALSE(target.filters()->deleteList());
    EXPECT_EQ(target.filters()->filter(0), source.filters()->filter(0));
}

} // namespace
} // namespace kvsig
