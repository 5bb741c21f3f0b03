#include "kvsig/montage/MontageFiles.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/registry/FrontDoor.h"
#include "montage/ScriptedSource.h"
#include "support/Opened.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <map>
#include <set>

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

    void expectRow(int row, const Values& grid1, const Values& grid2) {
        const std::vector<float> samples = read(*montage.source(row), 0, last);
        double largest = 0.0;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const double tolerance = 1e-6 * (std::abs(grid1[i]) + std::abs(grid2[i])) + 1e-9;
            largest = std::max(largest, std::abs(samples[i] - (grid1[i] - grid2[i])) / tolerance);
        }
        EXPECT_LE(largest, 1.0) << montage.source(row)->name();
    }

    ReaderPtr reader;
    SourceMontage montage;
    long last = 0;
};

TEST_P(RealMontages, BipolarRowsAreTheDifferenceOfTheirChannels) {
    for (const char* name : {"Double banana", "Transverse", "Referential Cz"}) {
        ASSERT_GT(montage.createMontage(name), 10) << name;
        for (int i = 0; i < montage.sourceCount(); ++i)
            if (!montage.source(i)->isGap())
                expectRow(i, channelOf(montage.source(i)->grid1()),
                          channelOf(montage.source(i)->grid2()));
    }
}

TEST_P(RealMontages, Av17IsTheMeanOfItsElectrodes) {
    Values mean(static_cast<std::size_t>(last + 1), 0.0);
    for (const char* electrode : {"F7", "F3", "Fz", "F4", "F8", "T3", "C3", "Cz", "C4", "T4", "T5",
                                  "P3", "Pz", "P4", "T6", "O1", "O2"}) {
        std::string name = electrode;
        static const std::map<std::string, std::string> modern{
            {"T3", "T7"}, {"T4", "T8"}, {"T5", "P7"}, {"T6", "P8"}};
        if (reader->indexOfG1(electrode) < 0)
            name = modern.at(name);
        const Values values = channelOf(name);
        for (std::size_t i = 0; i < mean.size(); ++i)
            mean[i] += values[i] / 17.0;
    }
    ASSERT_EQ(montage.createMontage("Average"), 19);
    for (int i = 0; i < montage.sourceCount(); ++i)
        expectRow(i, channelOf(montage.source(i)->grid1()), mean);
}

INSTANTIATE_TEST_SUITE_P(Names, RealMontages,
                         testing::Values("odd/test_edf_stim_channel.edf",
                                         "bdf/mne_python_test.bdf"),
                         [](const auto& row) { return row.index == 0 ? "Old" : "New"; });

} // namespace
} // namespace kvsig
