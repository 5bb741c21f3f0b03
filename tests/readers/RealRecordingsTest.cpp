#include "kvsig/readers/InterleavedReader.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/Opened.h"
#include "support/ReadAround.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

// Recordings of many makers, in a folder of the developer's machine. Without it the tests skip.
namespace kvsig {
namespace {

namespace fs = std::filesystem;
using test::rawOf;
constexpr double infinity = std::numeric_limits<double>::infinity();

struct RealRecording {
    const char* file;
    int type; ///< 6 or 48
    int channels;
    double rate;
    long samples; ///< stored
    const char* words = "";
};

void PrintTo(const RealRecording& recording, std::ostream* stream) { *stream << recording.file; }

// Facts read from the headers by hand; for those that do not open, words of the sentence.
const RealRecording recordings[] = {
    {"plain_edf/bdf_test.edf", 6, 8, 250, 73 * 250},
    {"mixed_rates/short_psg.edf", 6, 7, 100, 10 * 3000},
    {"mixed_rates/test_uneven_samp.edf", 6, 2, 100, 11 * 1000},
    {"edf_plus_c/annotations_and_signals2.edf", 6, 1, 4, 3600},
    {"edf_plus_c/26.08.23-05.52.59_Oximetry.EDF", 6, 3, 0.25, 546},
    {"edf_plus_c/test_utf8.edf", 6, 1, 128, 698 * 128},
    {"edf_plus_c/test_stim_channel.edf", 6, 3, 200, 600 * 200},
    {"bdf/mne_python_test.bdf", 48, 73, 2048, 2048},
    {"bdf/bdf_test.bdf", 48, 8, 250, 73 * 250},
    {"bdf/test_generator_datarec_generator_2.bdf", 48, 6, 500, 15 * 1000},
    {"bdf/SC4001EC-Hypnogram.bdf", 48, 1, infinity, 1305},
    {"bdf/short_psg.bdf", 48, 7, 100, 10 * 3000},
    {"odd/test_subsecond.edf", 6, 1, 128, 698 * 128},
    {"odd/test_edf_stim_channel.edf", 6, 25, 128, 1228},
    {"odd/mne_python_test.edf", 6, 139, 512, 6 * 512},
    {"odd/EDFjl_test_uneven_samp.edf", 6, 2, 100, 11 * 1000},
    {"edf_plus_c/sub-COF113_task-HN_acq-T2301_events.edf", 6, 0, 0, 0, "all hold annotations"},
    {"edf_plus_d/Discontinuous2.edf", 6, 0, 0, 0, "is Interrupted EDF+"},
    {"edf_plus_d/EDF+ normal.edf", 6, 0, 0, 0, "is Interrupted EDF+"},
    {"odd/Invalid DataRecord Count.edf", 6, 0, 0, 0, "the file ends with its header of 1024 bytes"},
    {"odd/sub-01_task-pullstand_eeg.edf", 6, 0, 0, 0, "header of 31 signals takes 8192 bytes"},
    {"odd/sub-01_task-pullstand_emg.edf", 6, 0, 0, 0, "number of signals (offset 252) is \"0  E\""},
    {"odd/sub-COF008_task-HN_acq-T2301_eeg.edf", 6, 0, 0, 0, "904 follow the header"},
    {"odd/sub-COF008_task-BL_acq-T224800_eeg.edf", 6, 0, 0, 0, "the file ends after 5000 bytes"},
};

// The folder, or an empty path.
fs::path folder() {
    const char* value = std::getenv("KVSIG_RECORDINGS");
    return value ? fs::path(value) : fs::path();
}

ReaderPtr opened(const std::string& file) {
    std::string error;
    ReaderPtr reader = openReader((folder() / file).c_str(), 0, &error);
    EXPECT_TRUE(reader) << error;
    return reader;
}

DataReader& kernelOf(const ReaderPtr& reader) { return dynamic_cast<DataReader&>(*reader); }

// The physical values that the format defines, in double precision.
std::vector<double> physicalOf(DataReader& reader, int channel) {
    std::vector<double> values;
    const double low = reader.digitalLow(channel), high = reader.digitalHigh(channel);
    const double scale = (reader.physioHigh(channel) - reader.physioLow(channel)) / (high - low);
    for (const std::int32_t raw : rawOf(reader, channel, 0, reader.storedSampleCount() - 1))
        values.push_back((raw - low) * scale + reader.physioLow(channel));
    return values;
}

class RealRecordings : public testing::Test {
  protected:
    void SetUp() override {
        if (folder().empty())
            GTEST_SKIP() << "KVSIG_RECORDINGS names no folder";
    }
};

class RealRecordingFacts : public RealRecordings,
                           public testing::WithParamInterface<RealRecording> {};

TEST_P(RealRecordingFacts, AgreeWithItsHeader) {
    const RealRecording& expected = GetParam();
    const std::string path = (folder() / expected.file).string();
    if (!fs::exists(path))
        GTEST_SKIP() << "not in the folder";
    EXPECT_EQ(DetectFileType(path.c_str()), expected.type);
    std::string error;
    const ReaderPtr reader = openReader(path.c_str(), 0, &error);
    ASSERT_EQ(static_cast<bool>(reader), expected.channels > 0) << error;
    if (!reader) {
        EXPECT_THAT(error, testing::StartsWith(path + ": "));
        EXPECT_THAT(error, testing::HasSubstr(expected.words));
        return;
    }
    DataReader& kernel = kernelOf(reader);
    EXPECT_EQ(reader->channelCount(), expected.channels);
    EXPECT_EQ(reader->samplingRate(), expected.rate);
    EXPECT_EQ(kernel.storedSampleCount(), expected.samples);
    EXPECT_EQ(expected.type == 6 ? reader->sampleCount() : expected.samples, expected.samples);
    test::readAround(kernel);

    // The last record is reached: its bytes end the file (but for a stray byte of one of them).
    std::ifstream stream(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (expected.type == 6 && expected.rate == kernel.storedSamplingRate(expected.channels - 1) &&
        reader->channelCount() * 256 + 256 == reader->headerLength()) {
        const auto sampleBytes = static_cast<std::size_t>(expected.samples * 2);
        const std::size_t last = bytes.size() - bytes.size() % 2 - 2;
        ASSERT_GE(bytes.size(), sampleBytes);
        const auto low = static_cast<unsigned char>(bytes[last]);
        const auto high = static_cast<signed char>(bytes[last + 1]);
        EXPECT_EQ(rawOf(kernel, expected.channels - 1, expected.samples - 1, expected.samples - 1)
                      .front(),
                  high * 256 + low);
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, RealRecordingFacts, testing::ValuesIn(recordings), [](const auto& row) {
        std::string name = row.param.file;
        std::replace_if(
            name.begin(), name.end(),
            [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
        return name;
    });

TEST_F(RealRecordings, OfAnyKindOpenOrSayWhyNot) {
    int seen = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder())) {
        std::string extension = entry.path().extension().string();
        std::transform(extension.begin(), extension.end(), extension.begin(),
                       [](char c) { return static_cast<char>(c | 0x20); });
        if (extension != ".edf" && extension != ".bdf")
            continue;
        ++seen;
        std::string error;
        if (const ReaderPtr reader = openReader(entry.path().c_str(), 0, &error))
            test::readAround(kernelOf(reader));
        else
            EXPECT_THAT(error, testing::StartsWith(entry.path().string() + ": "));
    }
    EXPECT_GT(seen, 0);
}

// Another program's values of the first 717 samples, before they were cut to whole counts, with one
// decimal. The offsets are far from zero.
TEST_F(RealRecordings, PhysicalValuesAgreeWithTheTextTruth) {
    const ReaderPtr reader = opened("odd/test_edf_stim_channel.edf");
    ASSERT_TRUE(reader);
    std::vector<std::vector<double>> values;
    std::vector<double> counts;
    for (int channel = 0; channel < 25; ++channel) {
        values.push_back(physicalOf(kernelOf(reader), channel));
        counts.push_back(reader->calibration(channel));
    }
    std::ifstream stream(folder() / "truth/test_edf_stim_channel.txt");
    for (std::size_t i = 0; i < 717; ++i)
        for (std::size_t channel = 0; channel < 25; ++channel) {
            double truth = std::nan("");
            stream >> truth;
            ASSERT_NEAR(values[channel][i], truth, 0.0501 + counts[channel])
                << i << ", " << channel;
        }
}

// One recording in 16 and in 24 bits.
TEST_F(RealRecordings, TwinsOfBothSampleWidthsAgree) {
    const ReaderPtr narrow = opened("plain_edf/bdf_test.edf"), wide = opened("bdf/bdf_test.bdf");
    ASSERT_TRUE(narrow && wide);
    double largest = 0.0;
    for (int channel = 0; channel < 8; ++channel) {
        const auto a = physicalOf(kernelOf(narrow), channel),
                   b = physicalOf(kernelOf(wide), channel);
        ASSERT_EQ(a.size(), b.size());
        for (std::size_t i = 0; i < a.size(); ++i)
            largest = std::max(largest, std::abs(a[i] - b[i]));
    }
    EXPECT_NEAR(largest, 0.016, 0.0005); // microvolts
}

TEST_F(RealRecordings, TheMixedRateTwinIsFlatAndOtherwiseTheSame) {
    const ReaderPtr edf = opened("mixed_rates/short_psg.edf"), bdf = opened("bdf/short_psg.bdf");
    ASSERT_TRUE(edf && bdf);
    for (int channel = 0; channel < 7; ++channel) {
        EXPECT_STREQ(edf->channelName(channel), bdf->channelName(channel));
        EXPECT_EQ(edf->calibration(channel), bdf->calibration(channel));
        EXPECT_THAT(rawOf(kernelOf(bdf), channel, 0, bdf->sampleCount() - 1), testing::Each(0));
    }
}

// Files whose makers keep the header beside them: the facts come from there, by way of an attribute
// file.
TEST_F(RealRecordings, RawOnesOpenThroughAttributeFiles) {
    const struct {
        const char* file;
        const char* facts;
        const char* eeg; ///< a scalp channel: its map entry
        int channels;
        long samples;
    } raws[] = {
        {"test.eeg", "SamplingRate=1000\nCalibration=0.5\nWaveformCount=32\n", "Cz-Ref=17", 32,
         7900},
        {"test_nicolet_raw.data", "SamplingRate=256\nCalibration=0.179\nWaveformCount=29\n",
         "CZ-Ref=18", 29, 512},
    };
    for (const auto& raw : raws) {
        SCOPED_TRACE(raw.file);
        const std::string path = (folder() / "raw_interleaved" / raw.file).string();
        if (!fs::exists(path))
            GTEST_SKIP() << "not in the folder";
        InterleavedReader reader;
        std::istringstream attributes("[FileInfo]\nFile=" + path +
                                      "\nHeaderLength=0\nDataType=0\n" + raw.facts +
                                      "[ChannelMap]\n" + raw.eeg + "\n");
        ASSERT_TRUE(reader.readAttributeFile(attributes));
        ASSERT_TRUE(reader.open(reader.fileName())) << reader.lastErrorText();
        EXPECT_EQ(reader.sampleCount(), raw.samples);
        std::ifstream stream(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        for (int channel = 0; channel < raw.channels; ++channel) {
            std::vector<std::int32_t> counts;
            for (auto at = static_cast<std::size_t>(channel) * 2; at < bytes.size();
                 at += static_cast<std::size_t>(raw.channels) * 2)
                counts.push_back(static_cast<signed char>(bytes[at + 1]) * 256 +
                                 static_cast<unsigned char>(bytes[at]));
            ASSERT_EQ(rawOf(reader, channel, 0, raw.samples - 1), counts) << channel;
        }
        // A misread layout is noise: here neighbours lie close together and within a millivolt.
        const int scalp = reader.indexOfG1("cz");
        ASSERT_GE(scalp, 0);
        const std::vector<float> values = test::valuesOf(reader, scalp, 0, raw.samples - 1);
        const auto [low, high] = std::minmax_element(values.begin(), values.end());
        double steps = 0.0;
        for (std::size_t i = 1; i < values.size(); ++i)
            steps += std::abs(values[i] - values[i - 1]);
        EXPECT_THAT(std::abs(*low), testing::Lt(1000.0F));
        EXPECT_THAT(*high - *low, testing::AllOf(testing::Gt(10.0F), testing::Lt(1000.0F)));
        EXPECT_LT(steps / static_cast<double>(values.size()), (*high - *low) / 20);
    }
}

} // namespace
} // namespace kvsig
