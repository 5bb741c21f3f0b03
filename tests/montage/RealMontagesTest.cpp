#include "kvsig/registry/FrontDoor.h"
#include "montage/MontageFixture.h"
#include "support/Opened.h"
#include "support/TempDir.h"

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
        path = std::filesystem::absolute(folder).string() + "/" + GetParam();
        if (!std::filesystem::exists(path))
            GTEST_SKIP() << "not in the folder";
        SetMontageFile(KVSIG_SOURCE_DIR "/share/KVMontageTemplates.xml");
        open(path);
    }
    void TearDown() override { SetMontageFile(nullptr); }

    void open(const std::string& file) {
        std::string error;
        montage.deleteSources();
        reader = openReader(file.c_str(), 0, &error);
        ASSERT_TRUE(reader) << error;
        montage.setReader(reader.get());
        last = dynamic_cast<DataReader&>(*reader).storedSampleCount() - 1;
    }

    // Every sample of an electrode from its raw counts.
    Values channelOf(const std::string& electrode) {
        auto& kernel = dynamic_cast<DataReader&>(*reader);
        const int channel = reader->indexOfG1(electrode.c_str());
        Values values;
        for (const std::int32_t raw : rawOf(kernel, channel, 0, last))
            values.push_back(raw * reader->calibration(channel));
        return values;
    }

    Values meanOf(const std::vector<std::string>& electrodes) {
        Values mean(static_cast<std::size_t>(last + 1), 0.0);
        for (const std::string& electrode : electrodes) {
            const Values values = channelOf(electrode);
            for (std::size_t i = 0; i < mean.size(); ++i)
                mean[i] += values[i] / static_cast<double>(electrodes.size());
        }
        return mean;
    }

    Values referenceOf(const std::string& grid2) {
        if (grid2 == "A1A2")
            return meanOf({"A1", "A2"});
        if (grid2 == "M1M2")
            return meanOf({"M1", "M2"});
        if (grid2 != "Av17")
            return channelOf(grid2);
        // all but the electrodes of the forehead and the ears
        const auto& names = reader->indexOfG1("T7") < 0 ? test::oldNames : test::newNames;
        return meanOf({names.begin() + 2, names.begin() + 19});
    }

    void expectRow(DataSource& row) {
        const Values grid1 = channelOf(row.grid1());
        const Values grid2 = referenceOf(row.grid2());
        const std::vector<float> samples = read(row, 0, last);
        double largest = 0.0;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const double tolerance = 1e-6 * (std::abs(grid1[i]) + std::abs(grid2[i])) + 1e-9;
            largest = std::max(largest, std::abs(samples[i] - (grid1[i] - grid2[i])) / tolerance);
        }
        EXPECT_LE(largest, 1.0) << row.name();
    }

    void expectRows(const char* name, int rowCount) {
        ASSERT_GT(montage.createMontage(name), 0) << name;
        int rows = 0;
        for (int i = 0; i < montage.sourceCount(); ++i)
            if (!montage.source(i)->isGap()) {
                expectRow(*montage.source(i));
                ++rows;
            }
        EXPECT_EQ(rows, rowCount) << name;
    }

    std::string path;
    ReaderPtr reader;
    SourceMontage montage;
    long last = 0;
};

TEST_P(RealMontages, RowsAreTheDifferenceOfTheirChannels) {
    for (const auto& [name, rowCount] : {std::pair("Double banana", 18),
                                         {"Transverse", 18},
                                         {"Referential Cz", 18},
                                         {"Average", 19}})
        expectRows(name, rowCount);
}

// Mastoids under the ears' names serve the montage that wants ears.
TEST_P(RealMontages, MastoidsAndEarsAreLinked) {
    if (reader->indexOfG1("M1") < 0)
        GTEST_SKIP() << "has no mastoids";
    expectRows("Linked mastoids", 19);

    std::string layout = "[FileInfo]\nFile=" + path + "\nFileType=BDF\n[ChannelMap]\n";
    for (int i = 0; i < reader->channelCount(); ++i) {
        const std::string grid1 = reader->grid1(i);
        layout += (grid1 == "M1"   ? "A1"
                   : grid1 == "M2" ? "A2"
                                   : grid1) +
                  "-Ref=" + std::to_string(i + 1) + "\n";
    }
    const test::TempDir dir;
    open(dir.write("ears.lay", layout));
    expectRows("Referential A1A2", 19);
}

INSTANTIATE_TEST_SUITE_P(Names, RealMontages,
                         testing::Values("odd/test_edf_stim_channel.edf",
                                         "bdf/mne_python_test.bdf"),
                         [](const auto& row) { return row.index == 0 ? "Old" : "New"; });

} // namespace
} // namespace kvsig
