#include "kvsig/montage/MontageFiles.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/registry/FrontDoor.h"
#include "montage/ScriptedSource.h"
#include "support/Opened.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <map>

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

    // An electrode as the recording names it.
    std::string nameHere(const std::string& electrode) {
        static const std::map<std::string, std::string> modern{
            {"T3", "T7"}, {"T4", "T8"}, {"T5", "P7"}, {"T6", "P8"}};
        return reader->indexOfG1(electrode.c_str()) < 0 ? modern.at(electrode) : electrode;
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
    const struct {
        const char* name;
        int rows;
        std::vector<std::array<const char*, 2>> some; ///< from the first row on
    } montages[] = {
        {"Double banana", 22, {{"Fp1", "F7"}, {"F7", "T3"}, {"T3", "T5"}, {"T5", "O1"}}},
        {"Transverse", 22, {{"F7", "Fp1"}, {"Fp1", "Fp2"}, {"Fp2", "F8"}}},
        {"Referential Cz",
         20,
         {{"Fp1", "Cz"},
          {"F3", "Cz"},
          {"C3", "Cz"},
          {"P3", "Cz"},
          {"O1", "Cz"},
          {"F7", "Cz"},
          {"T3", "Cz"},
          {"T5", "Cz"}}}};
    for (const auto& expected : montages) {
        ASSERT_GT(montage.createMontage(expected.name), 10) << expected.name;
        ASSERT_EQ(montage.sourceCount(), expected.rows);
        int row = 0;
        for (const auto& [grid1, grid2] : expected.some)
            expectRow(row++, channelOf(nameHere(grid1)), channelOf(nameHere(grid2)));
    }
}

TEST_P(RealMontages, Av17IsTheMeanOfItsElectrodes) {
    const std::vector<std::string> left{"Fp1", "F3", "C3", "P3", "O1", "F7", "T3", "T5"};
    const std::vector<std::string> middle{"Fz", "Cz", "Pz"};
    const std::vector<std::string> right{"Fp2", "F4", "C4", "P4", "O2", "F8", "T4", "T6"};
    Values mean(static_cast<std::size_t>(last + 1), 0.0);
    for (const auto& group : {left, middle, right})
        for (const std::string& electrode : group) {
            if (electrode == "Fp1" || electrode == "Fp2")
                continue;
            const Values values = channelOf(nameHere(electrode));
            for (std::size_t i = 0; i < mean.size(); ++i)
                mean[i] += values[i] / 17.0;
        }
    ASSERT_EQ(montage.createMontage("Average"), 21) << "19 rows and 2 gaps";
    int row = 0;
    for (const auto& group : {left, middle, right}) {
        for (const std::string& electrode : group)
            expectRow(row++, channelOf(nameHere(electrode)), mean);
        ++row; // the gap
    }
}

INSTANTIATE_TEST_SUITE_P(Names, RealMontages,
                         testing::Values("odd/test_edf_stim_channel.edf",
                                         "bdf/mne_python_test.bdf"),
                         [](const auto& row) { return row.index == 0 ? "Old" : "New"; });

} // namespace
} // namespace kvsig
