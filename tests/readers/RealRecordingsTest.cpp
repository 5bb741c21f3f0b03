#include "kvsig/readers/EDF90Reader.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/Opened.h"
#include "support/ReadAround.h"

#include <cstdlib>

// Recordings of many makers, in a folder of the developer's machine. Without it the tests skip.
namespace kvsig::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

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

class RealRecordings : public testing::Test {
  protected:
    void SetUp() override {
        if (folder().empty())
            GTEST_SKIP() << "KVSIG_RECORDINGS names no folder";
    }
};

// Sentence and findings.
std::string toldOf(DataReader& reader) {
    std::string told = reader.lastErrorText();
    for (const auto& findings : {reader.openFindings(), reader.inspectFile()})
        for (const OpenFinding& finding : findings)
            told += "\n" + finding.text;
    return told;
}

// Facts read from the headers by hand, oddities from the collection's index.
TEST_F(RealRecordings, AgreeWithTheirHeaders) {
    const struct {
        const char* file;
        int type, channels;
        double rate;
        long samples;          ///< stored
        const char* told = ""; ///< a part of what is odd about it; nothing is without
    } recordings[] = {
        {"plain_edf/bdf_test.edf", 6, 8, 250, 73 * 250, "there is no annotation signal"},
        {"mixed_rates/short_psg.edf", 6, 7, 100, 10 * 3000},
        {"mixed_rates/test_uneven_samp.edf", 6, 2, 100, 11 * 1000},
        {"edf_plus_c/annotations_and_signals2.edf", 6, 1, 4, 3600},
        {"edf_plus_c/26.08.23-05.52.59_Oximetry.EDF", 6, 3, 0.25, 546},
        {"edf_plus_c/test_utf8.edf", 6, 1, 128, 698 * 128, "annotation bytes are not ASCII"},
        {"edf_plus_c/test_stim_channel.edf", 6, 3, 200, 600 * 200},
        {"bdf/mne_python_test.bdf", 48, 73, 2048, 2048},
        {"bdf/bdf_test.bdf", 48, 8, 250, 73 * 250, "\"EDF+C\" in a file of 24-bit samples"},
        {"bdf/test_generator_datarec_generator_2.bdf", 48, 6, 500, 15 * 1000, "flat zeros"},
        {"bdf/SC4001EC-Hypnogram.bdf", 48, 1, infinity, 1305, "all signals (1) hold annotations"},
        {"bdf/short_psg.bdf", 48, 7, 100, 10 * 3000, "flat zeros"},
        {"odd/test_subsecond.edf", 6, 1, 128, 698 * 128, "begins 0.394531 s after the start time"},
        {"odd/test_edf_stim_channel.edf", 6, 25, 128, 1228, "holds a file path"},
        {"odd/mne_python_test.edf", 6, 139, 512, 6 * 512, "of 138 signals lie outside their digi"},
        {"odd/EDFjl_test_uneven_samp.edf", 6, 2, 100, 11 * 1000, "(offset 176) is \"26.00.99\""},
    };
    for (const auto& expected : recordings) {
        SCOPED_TRACE(expected.file);
        const std::string path = (folder() / expected.file).string();
        if (!fs::exists(path))
            continue;
        const ReaderPtr opened = openReader(path.c_str());
        ASSERT_TRUE(opened);
        DataReader& reader = kernelOf(opened);
        EXPECT_EQ(reader.fileType(), expected.type);
        EXPECT_THAT(toldOf(reader), HasSubstr(expected.told));
        EXPECT_EQ(toldOf(reader).empty(), *expected.told == '\0') << toldOf(reader);
        EXPECT_EQ(reader.channelCount(), expected.channels);
        EXPECT_EQ(reader.samplingRate(), expected.rate);
        EXPECT_EQ(reader.storedSampleCount(), expected.samples);
        EXPECT_EQ(expected.type == 6 ? reader.sampleCount() : expected.samples, expected.samples);

        // The last record is reached: its bytes end the file (but for a stray byte of one of them).
        std::ifstream stream(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        const int last = expected.channels - 1;
        if (expected.type != 6 || expected.rate != reader.storedSamplingRate(last) ||
            reader.channelCount() * 256 + 256 != reader.headerLength())
            continue;
        const std::size_t at = bytes.size() - bytes.size() % 2 - 2;
        const auto low = static_cast<unsigned char>(bytes.at(at));
        const auto high = static_cast<signed char>(bytes.at(at + 1));
        EXPECT_EQ(rawOf(reader, last, expected.samples - 1, expected.samples - 1).front(),
                  high * 256 + low);
    }
}

TEST_F(RealRecordings, RefusedOnesSayWhyAndWhatElseIsOdd) {
    const struct {
        const char *file, *sentence, *finding;
    } recordings[] = {
        {"edf_plus_c/sub-COF113_task-HN_acq-T2301_events.edf", "all hold annotations", ""},
        {"edf_plus_d/Discontinuous2.edf", "is Interrupted EDF+",
         "a gap of 2907 s at 2724 s, before data record 682"},
        {"edf_plus_d/EDF+ normal.edf", "is Interrupted EDF+", "data record 2 overlaps by 1 s with"},
        {"odd/Invalid DataRecord Count.edf", "the file ends with its header of 1024 bytes",
         "is \"-1\": the recording was not closed"},
        {"odd/sub-01_task-pullstand_eeg.edf", "header of 31 signals takes 8192 bytes",
         "stand one byte early"},
        {"odd/sub-01_task-pullstand_emg.edf", "number of signals (offset 252) is \"0  E\"",
         "header length 2816 and 10 signals agree"},
        {"odd/sub-COF008_task-HN_acq-T2301_eeg.edf", "904 follow the header",
         "is \"2872\", but the data holds 0"},
        {"odd/sub-COF008_task-BL_acq-T224800_eeg.edf", "the file ends after 5000 bytes", ""},
    };
    for (const auto& expected : recordings) {
        const std::string path = (folder() / expected.file).string();
        if (!fs::exists(path))
            continue;
        EXPECT_EQ(DetectFileType(path.c_str()), 6);
        EDF90Reader reader;
        EXPECT_FALSE(reader.open(path.c_str()));
        EXPECT_THAT(reader.lastErrorText(), StartsWith(path + ": "));
        EXPECT_THAT(reader.lastErrorText(), HasSubstr(expected.sentence));
        EXPECT_THAT(toldOf(reader), HasSubstr(expected.finding)) << expected.file;
    }
}

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
            readAround(kernelOf(reader));
        else
            EXPECT_THAT(error, StartsWith(entry.path().string() + ": "));
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

} // namespace
} // namespace kvsig::test
