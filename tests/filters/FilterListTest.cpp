#include "kvsig/filters/FilterList.h"

#include "kvsig/filters/FIRLowPass.h"
#include "kvsig/filters/IIRHighPass.h"
#include "kvsig/filters/IIRLowPass.h"
#include "kvsig/filters/IIRNotch.h"

#include <gtest/gtest.h>
#include <initializer_list>
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

Values noise(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> value(-200.0F, 300.0F);
    Values samples(count);
    for (float& sample : samples)
        sample = value(random);
    return samples;
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
    EXPECT_EQ(list.isDesigned(), 1);
    EXPECT_EQ(list.nPrePts(), 0);
    EXPECT_EQ(list.design(0.1, 0.2, 0.3), 0);
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

TEST(FilterList, DeletesWhatItOwnsAndNothingElse) {
    int alive = 0;
    CountedFilter borrowed(alive);
    const auto made = [&alive] { return std::make_unique<CountedFilter>(alive).release(); };
    {
        FilterList borrower;
        borrower.addNext(&borrowed);
        FilterList owner, dying;
        for (FilterList* list : {&owner, &dying}) {
            list->setDeleteList(true);
            list->addNext(made());
            list->removeAll();
            EXPECT_EQ(alive, list == &owner ? 1 : 2);
            list->addNext(made());
        }
        owner = *&owner;
        EXPECT_TRUE(owner.deleteList());
        {
            FilterList copy = owner;
            FilterList assigned;
            assigned = owner;
            EXPECT_EQ(copy.filter(0), owner.filter(0));
            EXPECT_EQ(assigned.filter(0), owner.filter(0));
            copy.removeAll();
        }
        EXPECT_EQ(alive, 3) << "copies own nothing";
        owner = borrower;
        EXPECT_EQ(alive, 2) << "what it owned is gone, what it took over is not";
        EXPECT_FALSE(owner.deleteList());
        borrower.removeAll();
    }
    EXPECT_EQ(alive, 1);
}

TEST(Filter, EqualityComparesTypeAndSettings) {
    IIRLowPass low, other;
    IIRHighPass high;
    FIRLowPass fir;
    for (Filter* filter : std::initializer_list<Filter*>{&low, &high, &fir})
        filter->design(0.1, 0.05, 40.0);
    EXPECT_TRUE(static_cast<Filter&>(low) == fir);
    EXPECT_FALSE(static_cast<Filter&>(low) == high);
    const double settings[][3] = {{0.2, 0.05, 40.0}, {0.1, 0.06, 40.0}, {0.1, 0.05, 41.0}};
    for (const auto& [cutoff, transition, attenuation] : settings) {
        other.design(cutoff, transition, attenuation);
        EXPECT_FALSE(low == other);
    }
}

} // namespace
} // namespace kvsig
