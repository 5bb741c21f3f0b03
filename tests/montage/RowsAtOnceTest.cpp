#include "kvsig/montage/RowsAtOnce.h"

#include "kvsig/filters/FIRLowPass.h"
#include "kvsig/filters/IIRLowPass.h"
#include "montage/MontageFixture.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace kvsig {
namespace {

using test::oldNames;
using test::on;
using test::TestMontage;
using Rows = std::vector<std::vector<float>>;

test::FakeRecording noisyRecording() {
    test::FakeRecording file = test::recordingOf(oldNames);
    file.channels[3].type = short{100};
    file.samples = 5000;
    file.raw = [](int channel, long i) {
        std::minstd_rand random(static_cast<unsigned>(i * 64 + channel + 1));
        random.discard(2);
        return static_cast<std::int32_t>(random() % 4001) - 2000;
    };
    return file;
}

// Two montages alike over two readers alike: the rows of one are asked one after the other, those
// of the other all at once. Rows of all kinds: with the montage's filters, more of them than go
// side by side; with their own, equal and different; gaps; against averages.
class RowsAtOnceTest : public testing::Test {
  protected:
    RowsAtOnceTest() {
        each([](TestMontage& montage) {
            montage.add({"F3+F4+C3+C4", "Fp1:0.7+Fp2:0.3"});
            montage.addGlobalAvgRefs();
            for (std::size_t i = 0; i + 2 < oldNames.size(); ++i)
                montage.add({(oldNames[i] + "-" + oldNames[i + 2]).c_str()});
            montage.add({"Gap1", "F7-Av17|0,0,0,0,0.16,30", "T3|0,0,0,0,0.16,30", "O1-F3F4C3C4",
                         "Cz|0,0,0,0,0.03,(off)", "Gap2", "F3-0.5*F7-0.5*T3", "Fp1", "Fp1-Fp1"});
        });
        each([](TestMontage& montage) { montage.setFilters(on(1), on(70), on(60, 1)); });
    }

    template <typename Act>
    void each(Act act) {
        act(single);
        act(together);
    }

    // Both ways give the same bits, and leave the same behind.
    void expectSame(long first, long last, double scale = 1.0) {
        SCOPED_TRACE(testing::Message() << first << ".." << last << " x " << scale);
        const auto count = static_cast<std::size_t>(last - first + 1);
        const auto rowCount = static_cast<std::size_t>(single.sourceCount());
        Rows expected(rowCount, std::vector<float>(count, -7.0F));
        Rows rows = expected;
        std::vector<float*> pointers;
        int least = std::numeric_limits<int>::max();
        for (std::size_t r = 0; r < rowCount; ++r) {
            least = std::min(least, single.source(static_cast<int>(r))
                                        ->getData(first, last, expected[r].data(), scale));
            pointers.push_back(rows[r].data());
        }
        EXPECT_EQ(together.getData(first, last, pointers.data(), scale), least);
        for (std::size_t r = 0; r < rowCount; ++r)
            EXPECT_EQ(rows[r], expected[r]) << single.source(static_cast<int>(r))->name();
        EXPECT_EQ(together.recording.takeCalls("get"), single.recording.takeCalls("get"));
        for (int r = 0; r < single.sourceCount(); ++r)
            expectSameLeftBehind(*single.source(r), *together.source(r));
        for (int r = 0; r < single.avgRefCount(); ++r)
            expectSameLeftBehind(*single.avgRef(r), *together.avgRef(r));
    }

    static void expectSameLeftBehind(DataSource& expected, DataSource& source) {
        const DataCache& theirs = *expected.cache();
        const DataCache& ours = *source.cache();
        EXPECT_EQ(ours.nFirst, theirs.nFirst);
        EXPECT_EQ(ours.dScale, theirs.dScale);
        EXPECT_EQ(std::vector<float>(ours.pData, ours.pData + ours.length()),
                  std::vector<float>(theirs.pData, theirs.pData + theirs.length()));
        std::vector<float> next(5, 1.0F);
        std::vector<float> expectedNext = next;
        FilterList copy = *expected.filters(); // its filters go on with the stream
        copy.iterApply(expectedNext.data(), 5);
        source.filters()->iterApply(next.data(), 5);
        EXPECT_EQ(next, expectedNext) << "state of the filters";
    }

    TestMontage single{noisyRecording()};
    TestMontage together{noisyRecording()};
};

TEST_F(RowsAtOnceTest, AreTheRowsOneByOneBitByBit) {
    ASSERT_GT(single.sourceCount(), 2 * IIRCascade::mostRows - 6);
    for (const bool cached : {true, false}) {
        each([&](TestMontage& montage) { montage.setUseCache(cached); });
        expectSame(1000, 1999);
        expectSame(2000, 2999); // the next page
        expectSame(2500, 3499); // a part of it is there
        expectSame(2600, 3400, -0.1);
        expectSame(3300, 3600, 3.0);
        expectSame(4000, 4000);
        expectSame(-300, 700);
        expectSame(-900, -500);
        expectSame(4700, 5400);
    }
}

TEST_F(RowsAtOnceTest, FollowEveryChangeOfFiltersAndRows) {
    constexpr FilterAttr off;
    const FilterAttr designs[][3] = {{on(2), on(30), on(50, 1)},
                                     {on(2), off, off},
                                     {off, on(30), off},
                                     {off, off, on(50, 1)},
                                     {on(2), on(30), off},
                                     {on(2), off, on(50, 1)},
                                     {off, off, off},
                                     {on(1), on(150), off}};
    for (const auto& [highPass, lowPass, notch] : designs) {
        each([&, high = highPass, low = lowPass, band = notch](TestMontage& montage) {
            montage.setFilters(high, low, band);
        });
        expectSame(1000, 1999);
        expectSame(1500, 2499);
    }
    each([](TestMontage& montage) {
        montage.setUseFilter(true); // of rows too that have no filters
        montage.source(2)->setUseFilter(false);
        montage.source(4)->setUseCache(false);
        montage.deleteSource(montage.source(7));
        montage.changeReference(nullptr);
    });
    expectSame(1500, 2499);
    expectSame(1700, 2699);
    each([](TestMontage& montage) { montage.flushCache(); });
    expectSame(1700, 2699);
}

// Filters that cannot go side by side stand in some rows, before and behind shared ones that can.
TEST_F(RowsAtOnceTest, MixWithRowsOfOtherFilters) {
    FIRLowPass fir;
    IIRLowPass shared[2];
    fir.design(0.1, 0.05, 40.0);
    int which = 0;
    each([&](TestMontage& montage) {
        IIRLowPass& filter = shared[which++];
        filter.design(0.2, 0.0, 0.0);
        for (const int row : {1, 5, 9, 20})
            montage.source(row)->filters()->addNext(&filter);
        montage.source(5)->filters()->addNext(&fir);
        montage.avgRef(0)->filters()->addNext(&fir);
    });
    expectSame(1000, 1999);
    expectSame(1800, 2799);
    each([](TestMontage& montage) { montage.source(9)->setUseFilter(false); });
    expectSame(1800, 2799);
}

TEST(RowsAtOnce, NeedNoMoreMemoryForLongRanges) {
    test::FakeRecording file = test::recordingOf({"Fp1", "F7"});
    file.samples = 70'000;
    file.raw = [](int channel, long i) { return static_cast<int>((i * 7919) % 1009) * channel; };
    TestMontage montage(file);
    montage.recording.setMaxPages(100);
    for (int i = 0; i < 34; ++i)
        montage.add({"Fp1-F7"});
    montage.add({"Gap1"});
    montage.setFilters(on(1));
    montage.setUseCache(false);
    std::vector<float> work;
    const auto run = [&](long samples, int from, int to) {
        Rows rows(static_cast<std::size_t>(to - from),
                  std::vector<float>(static_cast<std::size_t>(samples), -7.0F));
        RowsAtOnce rowsAtOnce(0, samples - 1, 1.0, work);
        for (int r = from; r < to; ++r)
            rowsAtOnce.add(*montage.source(r), rows[static_cast<std::size_t>(r - from)].data());
        EXPECT_EQ(rowsAtOnce.finish(), samples);
        EXPECT_LE(work.size(), RowsAtOnce::mostRoom);
        return rows;
    };
    const Rows rows = run(70'000, 0, 34); // in several goes
    const std::vector<float> expected = test::read(*montage.source(0), 0, 69'999);
    for (const std::vector<float>& row : rows)
        ASSERT_EQ(row, expected);
    EXPECT_EQ(run(1'100'000, 34, 35).back(), std::vector<float>(1'100'000, 0.0F));
}

TEST_F(RowsAtOnceTest, LeaveOutRowsWithoutABufferAndRefuseWhatTheSingleCallRefuses) {
    constexpr long most = std::numeric_limits<long>::max();
    constexpr long least = std::numeric_limits<long>::min();
    std::vector<float*> pointers(static_cast<std::size_t>(together.sourceCount()), nullptr);
    EXPECT_EQ(together.getData(0, 9, pointers.data(), 1.0), 0);
    EXPECT_EQ(together.getData(0, 9, nullptr, 1.0), 0);
    std::vector<float> buffer(10, -7.0F);
    pointers[3] = buffer.data();
    for (const auto& [first, last] : {std::pair(5L, 4L), {most, least}, {least, most}})
        EXPECT_EQ(together.getData(first, last, pointers.data(), 1.0), 0);
    EXPECT_EQ(buffer, std::vector<float>(10, -7.0F));
    EXPECT_EQ(together.getData(0, 9, pointers.data(), 1.0), 10);
    EXPECT_EQ(buffer, test::read(*single.source(3), 0, 9));
    EXPECT_EQ(together.source(4)->cache()->length(), 0) << "not looked at";
    EXPECT_EQ(together.getData(least, least + 9, pointers.data(), 1.0), 0) << "no room to run in";
    EXPECT_EQ(buffer, std::vector<float>(10, 0.0F));
    EXPECT_EQ(together.getData(most - 9, most, pointers.data(), 1.0),
              single.source(3)->getData(most - 9, most, buffer.data(), 1.0));
    TestMontage empty(oldNames);
    EXPECT_EQ(empty.getData(0, 9, pointers.data(), 1.0), 0);
}

} // namespace
} // namespace kvsig
