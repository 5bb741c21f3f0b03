#include "kvsig/registry/FrontDoor.h"
#include "montage/MontageFixture.h"
#include "support/Opened.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

// Montages of recordings on the developer's machine. Without them the tests skip.
namespace kvsig {
namespace {

using test::rawOf;
using test::read;
using Values = std::vector<double>;

// A recording with 10-20 or with 10-10 names.
class RealMontages : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        const char* folder = std::getenv("KVSIG_RECORDINGS");
        if (!folder)
            GTEST_SKIP() << "KVSIG_RECORDINGS names no folder";
        const std::string path = std::string(folder) + "/" + GetParam();
        if (!std::filesystem::exists(path))
            GTEST_SKIP() << "not in the folder";
        std::string error;
        reader = openReader(path.c_str(), 0, &error);
        ASSERT_TRUE(reader) << error;
        SetMontageFile(KVSIG_SOURCE_DIR "/share/KVMontageTemplates.xml");
        montage.setReader(reader.get());
        last = dynamic_cast<DataReader&>(*reader).storedSampleCount() - 1;
    }
    void TearDown() override { SetMontageFile(nullptr); }

    // Every sample of an electrode from its raw counts.
    Values channelOf(const std::string& electrode) {
        auto& kernel = dynamic_cast<DataReader&>(*reader);
        const int channel = reader->indexOfG1(electrode.c_str());
        Values values;
        for (const std::int32_t raw : rawOf(kernel, channel, 0, last))
            values.push_back(raw * reader->calibration(channel));
        return values;
    }

    // The mean of the electrodes but those of the forehead and the ears.
    Values meanOf17() {
        const auto& names = reader->indexOfG1("T7") < 0 ? test::oldNames : test::newNames;
        Values mean(static_cast<std::size_t>(last + 1), 0.0);
        for (std::size_t electrode = 2; electrode < 19; ++electrode) {
            const Values values = channelOf(names[electrode]);
            for (std::size_t i = 0; i < mean.size(); ++i)
                mean[i] += values[i] / 17.0;
        }
        return mean;
    }

    void expectRow(DataSource& row) {
        const Values grid1 = channelOf(row.grid1());
        const Values grid2 =
            row.grid2() == std::string("Av17") ? meanOf17() : channelOf(row.grid2());
        const std::vector<float> samples = read(row, 0, last);
        double largest = 0.0;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const double tolerance = 1e-6 * (std::abs(grid1[i]) + std::abs(grid2[i])) + 1e-9;
            largest = std::max(largest, std::abs(samples[i] - (grid1[i] - grid2[i])) / tolerance);
        }
        EXPECT_LE(largest, 1.0) << row.name();
    }

    ReaderPtr reader;
    SourceMontage montage;
    long last = 0;
};

TEST_P(RealMontages, RowsAreTheDifferenceOfTheirChannels) {
    for (const auto& [name, rowCount] : {std::pair("Double banana", 18),
                                         {"Transverse", 18},
                                         {"Referential Cz", 18},
                                         {"Average", 19}}) {
        ASSERT_GT(montage.createMontage(name), 0) << name;
        int rows = 0;
        for (int i = 0; i < montage.sourceCount(); ++i)
            if (!montage.source(i)->isGap()) {
                expectRow(*montage.source(i));
                ++rows;
            }
        EXPECT_EQ(rows, rowCount) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Names, RealMontages,
                         testing::Values("odd/test_edf_stim_channel.edf",
                                         "bdf/mne_python_test.bdf"),
                         [](const auto& row) { return row.index == 0 ? "Old" : "New"; });

} // namespace
} // namespace kvsig
