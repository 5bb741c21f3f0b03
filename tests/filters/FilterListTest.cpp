#include "kvsig/filters/FilterList.h"

#include "kvsig/filters/FIRLowPass.h"
#include "kvsig/filters/IIRHighPass.h"
#include "kvsig/filters/IIRLowPass.h"
#include "kvsig/filters/IIRNotch.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace kvsig {
namespace {

using Values = std::vector<float>;

// Counts how many are alive.
class CountedFilter : public IIRLowPass {
  public:
    explicit CountedFilter(int& alive) : m_alive(alive) { ++m_alive; }
    CountedFilter(const CountedFilter&) = delete;
    CountedFilter& operator=(const CountedFilter&) = delete;
    ~CountedFilter() override { --m_alive; }

  private:
    int& m_alive;
};

// Low pass, high pass and notch of their own, as a channel has them.
struct Chain {
    IIRLowPass low;
    IIRHighPass high;
    IIRNotch notch;
    FilterList list;

    Chain() {
        low.design(70.0 / 256, 0.0, 0.0);
        high.design(0.53 / 256, 0.0, 0.0);
        notch.design(60.0 / 256, 1.0 / 256, 0.0);
        for (Filter* filter : {static_cast<Filter*>(&low), static_cast<Filter*>(&high),
                               static_cast<Filter*>(&notch)})
            list.addNext(filter);
    }
};

Values noise(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> value(-200.0F, 300.0F);
    Values samples(count);
    for (float& sample : samples)
        sample = value(random);
    return samples;
}

TEST(FilterList, AnEmptyListIsANeutralFilter) {
    FilterList list;
    EXPECT_EQ(list.isDesigned(), 1);
    EXPECT_EQ(list.nPrePts(), 0);
    EXPECT_EQ(list.iterGetPosition(), -1);
    Values samples{1, 2};
    EXPECT_EQ(list.apply(samples.data(), 2), 1);
    EXPECT_EQ(list.iterApply(samples.data(), 2), 1);
    EXPECT_EQ(samples, (Values{1, 2}));
    EXPECT_EQ(list.design(0.1, 0.2, 0.3), 0);
    EXPECT_EQ(list.freqCutoff(), 0.0);
}

// A host's own kind of filter.
class Doubler : public IIRLowPass {
  public:
    int apply(float* data, int count) override {
        for (int i = 0; i < count; ++i)
            data[i] *= 2.0F;
        return 1;
    }
    int iterApply(float* data, int count) override { return apply(data, count); }
};

TEST(FilterList, GivesWhatItsFiltersGiveOneAfterTheOther) {
    // Recursive filters in all orders, more of them than run as one, and with others among them.
    const std::vector<std::string> chains{"l",   "n",   "lh",  "hn",       "nl",
                                          "lhn", "lln", "nnh", "lhlhnlhn", "lhnlhnlhn",
                                          "i",   "lin", "lfn", "dn",       ""};
    for (const std::string& letters : chains) {
        std::vector<std::unique_ptr<Filter>> filters;
        FilterList list;
        for (const char letter : letters) {
            if (letter == 'l')
                filters.push_back(std::make_unique<IIRLowPass>());
            else if (letter == 'h')
                filters.push_back(std::make_unique<IIRHighPass>());
            else if (letter == 'n' || letter == 'i')
                filters.push_back(std::make_unique<IIRNotch>());
            else if (letter == 'f')
                filters.push_back(std::make_unique<FIRLowPass>());
            else
                filters.push_back(std::make_unique<Doubler>());
            const double cutoff = 0.03 + 0.04 * static_cast<double>(filters.size());
            filters.back()->design(letter == 'i' ? 0.5 : cutoff, 0.01, 40.0);
            list.addNext(filters.back().get());
        }
        for (const std::size_t count : {0U, 1U, 2U, 3U, 130U}) {
            Values expected = noise(count, 5);
            Values samples = expected;
            Values expectedNext = noise(7, 6);
            Values next = expectedNext;
            const auto size = static_cast<int>(count);
            for (const auto& filter : filters)
                filter->apply(expected.data(), size);
            for (const auto& filter : filters)
                filter->iterApply(expectedNext.data(), 7);
            EXPECT_EQ(list.apply(samples.data(), size), 1);
            list.iterApply(next.data(), 7);
            EXPECT_EQ(samples, expected) << letters << ' ' << count;
            EXPECT_EQ(next, expectedNext) << letters << ' ' << count << ": what is left behind";
        }
    }
}

TEST(FilterList, AsksItsFilters) {
    IIRLowPass low;
    FIRLowPass fir;
    FilterList list;
    list.addNext(&low);
    list.addNext(nullptr);
    list.addNext(&list);
    low.design(0.03, 0.0, 0.0);
    list.addNext(&fir);
    EXPECT_EQ(list.isDesigned(), 0);
    fir.design(0.1, 0.05, 40.0);
    EXPECT_EQ(list.isDesigned(), 1);
    EXPECT_EQ(list.nPrePts(), 33);
    EXPECT_EQ(list.nPstPts(), 24);

    Values samples = noise(60, 1);
    list.iterSetPosition(9, samples.data(), 60);
    EXPECT_EQ(list.iterGetPosition(), 9);
    EXPECT_EQ(list.apply(samples.data(), 10), 1) << "the FIR's refusal is not the list's";
    list.reset();
    EXPECT_EQ(low.isDesigned(), 0);
    list.removeAll();
    EXPECT_EQ(list.iterGetPosition(), -1);
}

TEST(FilterList, AppliesFiltersInTheOrderOfAdding) {
    // On a fresh start the notch and the low pass do not commute: the pass-through differs.
    Chain chain;
    Values byHand = noise(40, 2);
    Values byList = byHand;
    Chain same;
    same.low.apply(byHand.data(), 40);
    same.high.apply(byHand.data(), 40);
    same.notch.apply(byHand.data(), 40);
    chain.list.apply(byList.data(), 40);
    EXPECT_EQ(byList, byHand);
}

TEST(FilterList, AStreamOfBlocksEqualsOnePass) {
    std::mt19937 random(11);
    std::discrete_distribution<int> size({3, 3, 2, 2, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1});
    for (unsigned run = 0; run < 50; ++run) {
        const Values samples = noise(500, run);
        Values onePass = samples;
        Chain().list.apply(onePass.data(), 500);

        Chain chain;
        Values streamed;
        while (streamed.size() < samples.size()) {
            const auto from = samples.begin() + static_cast<std::ptrdiff_t>(streamed.size());
            const auto count = std::min<std::ptrdiff_t>(size(random), samples.end() - from);
            // Each block in memory of its own: nothing before it may be read.
            Values block(from, from + count);
            if (streamed.empty())
                chain.list.iterSetPosition(count, block.data(), static_cast<int>(count));
            else
                chain.list.iterApply(block.data(), static_cast<int>(count));
            streamed.insert(streamed.end(), block.begin(), block.end());
        }
        ASSERT_EQ(streamed, onePass) << "run " << run;
        ASSERT_EQ(chain.list.iterGetPosition(), 500);
    }
}

TEST(FilterList, DeletesWhatItOwns) {
    int alive = 0;
    CountedFilter borrowed(alive);
    for (const bool owned : {true, false}) {
        const auto next = [&]() -> Filter* {
            return owned ? std::make_unique<CountedFilter>(alive).release() : &borrowed;
        };
        FilterList list;
        list.setDeleteList(owned);
        list.addNext(next());
        list.removeAll();
        EXPECT_EQ(alive, 1);
        list.addNext(next());
        EXPECT_EQ(alive, owned ? 2 : 1);
    }
    EXPECT_EQ(alive, 1);
}

TEST(FilterList, ACopyOwnsNothing) {
    int alive = 0;
    CountedFilter borrowed(alive);
    FilterList owner;
    owner.setDeleteList(true);
    owner.addNext(std::make_unique<CountedFilter>(alive).release());
    owner = *&owner;
    EXPECT_TRUE(owner.deleteList());
    {
        FilterList copy = owner;
        EXPECT_EQ(copy.iterGetPosition(), 0) << "it holds the filter";
        copy.removeAll();
        FilterList assigned;
        assigned = owner;
        EXPECT_EQ(assigned.iterGetPosition(), 0);
    }
    EXPECT_EQ(alive, 2);
    FilterList other;
    other.addNext(&borrowed);
    owner = other;
    EXPECT_EQ(alive, 1) << "what it owned is gone, what it took over is not";
    EXPECT_FALSE(owner.deleteList());
}

TEST(Filter, EqualityComparesTypeAndSettings) {
    IIRLowPass low;
    IIRLowPass sameLow;
    FIRLowPass fir;
    IIRHighPass high;
    for (Filter* filter : {static_cast<Filter*>(&low), static_cast<Filter*>(&sameLow),
                           static_cast<Filter*>(&high), static_cast<Filter*>(&fir)})
        filter->design(0.1, 0.05, 40.0);
    EXPECT_TRUE(static_cast<Filter&>(low) == fir);
    EXPECT_FALSE(static_cast<Filter&>(low) == high);
    const double settings[][3] = {{0.2, 0.05, 40.0}, {0.1, 0.06, 40.0}, {0.1, 0.05, 41.0}};
    for (const auto& [cutoff, transition, attenuation] : settings) {
        sameLow.design(cutoff, transition, attenuation);
        EXPECT_FALSE(low == sameLow);
    }
}

} // namespace
} // namespace kvsig
