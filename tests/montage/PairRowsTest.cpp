#include "kvsig/readers/SyncReader.h"
#include "montage/MontageFixture.h"

#include <gtest/gtest.h>
#include <vector>

namespace kvsig {
namespace {

// A pair stretches its slower recording in samples of its own, which it adds to: sums must not
// depend on what was read before.
class RowsOverAPair : public testing::Test {
  protected:
    RowsOverAPair() {
        second.file.rate = 400.0;
        EXPECT_TRUE(pair.open("scripted"));
        montage.setReader(&pair);
    }
    std::vector<float> channel(int index, long from, long to) {
        std::vector<float> values(static_cast<std::size_t>(to - from + 1));
        pair.getData(index, from, to, values.data(), 1.0, 0);
        return values;
    }
    void expectDifference(DataSource& row, const std::vector<float>& plus,
                          const std::vector<float>& minus, long from, long to) {
        const std::vector<float> values = test::read(row, from, to);
        for (std::size_t i = 0; i < values.size(); ++i)
            ASSERT_NEAR(values[i], plus[i] - minus[i], 1e-4) << row.name() << " " << i;
    }

    test::FakeReader first{test::recordingOf({"Fp1", "F7", "Cz"})};
    test::FakeReader second{test::recordingOf({"EMG", "EOG"})};
    SyncReader pair{&first, &second};
    SourceMontage montage;
};

TEST_F(RowsOverAPair, AgainstOneAverageAreEachRight) {
    std::vector<int> all{0, 1, 2};
    montage.createSource(all)->setName("Av");
    for (const char* defn : {"Fp1-Av", "F7-Av", "Cz-Av"})
        ASSERT_TRUE(montage.createSource(defn)) << defn;
    const std::vector<std::pair<long, long>> windows{{0, 199}, {100, 299}, {100, 399}};
    for (const auto& [from, to] : windows) {
        std::vector<float> mean(static_cast<std::size_t>(to - from + 1));
        for (const int c : all)
            for (std::size_t i = 0; i < mean.size(); ++i)
                mean[i] += channel(c, from, to)[i] / 3;
        for (const int c : all)
            expectDifference(*montage.source(c), channel(c, from, to), mean, from, to);
    }
}

TEST_F(RowsOverAPair, MayJoinItsTwoRecordings) {
    constexpr int fp1 = 0, f7 = 1, emg = 3;
    for (const auto& [plus, minus] : {std::pair(fp1, emg), std::pair(emg, fp1), std::pair(f7, fp1)})
        expectDifference(*montage.createSource(plus, minus), channel(plus, 0, 399),
                         channel(minus, 0, 399), 0, 399);
}

// The pair answers for EMG with its number in the second recording, which is Fp1's in the pair.
TEST_F(RowsOverAPair, HaveNoReferenceInTheSecondRecording) {
    montage.createRecordedMontage();
    EXPECT_FALSE(montage.changeReference("EMG"));
    EXPECT_TRUE(montage.changeReference("cz"));
    EXPECT_STREQ(montage.source(0)->name(), "Fp1-Cz");
}

} // namespace
} // namespace kvsig
