#include "kvsig/readers/BDFReader.h"
#include "kvsig/readers/EDF90Reader.h"
#include "kvsig/readers/InterleavedReader.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/EdfFile.h"
#include "support/Opened.h"
#include "support/ReadAround.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>

// Recordings as large, as wide, as slow and as fast as they come. Long ones are sparse files.
namespace kvsig {
namespace {

namespace fs = std::filesystem;
using test::rawOf;

constexpr long lastIndex = std::numeric_limits<std::int32_t>::max();

void put16(const std::string& path, std::int64_t offset, std::int16_t value) {
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(offset);
    file.put(static_cast<char>(value & 0xFF)).put(static_cast<char>(value >> 8));
}

bool readLayout(DataReader& reader, int channels, const std::string& rate) {
    std::istringstream attributes("[FileInfo]\nFile=x\nSamplingRate=" + rate +
                                  "\nHeaderLength=64\nCalibration=1\nDataType=0\nWaveformCount=" +
                                  std::to_string(channels) + "\n");
    return reader.readAttributeFile(attributes);
}

// A sparse file holds what the disk cannot; systems without them would fill it.
bool makeSparse(const std::string& path, std::int64_t bytes) {
    std::error_code failed;
    std::ofstream(path).put('x');
    fs::resize_file(path, static_cast<std::uintmax_t>(bytes), failed);
    return !failed;
}

TEST(Scale, RawDataBeyondFourGigabytesIsReadAtItsEnd) {
    const test::TempDir dir;
    const std::string path = dir.file("long.raw");
    constexpr std::int64_t frames = 700'000'000;
    if (!makeSparse(path, 64 + frames * 8))
        GTEST_SKIP() << "no sparse file of 5.6 GB";
    put16(path, 64 + (frames - 1) * 8 + 6, -321);
    put16(path, 64 + (std::int64_t{1} << 29) * 8, 77); // byte 2^32 of the samples
    InterleavedReader reader;
    ASSERT_TRUE(readLayout(reader, 4, "256"));
    ASSERT_TRUE(reader.open(path.c_str())) << reader.lastErrorText();
    EXPECT_EQ(reader.sampleCount(), frames);
    EXPECT_EQ(rawOf(reader, 3, frames - 2, frames), (std::vector<std::int32_t>{0, -321, 0}));
    EXPECT_EQ(rawOf(reader, 0, 1L << 29, 1L << 29).front(), 77);
}

// Indices have 32 bits: of a longer recording the first 2^31 - 1 samples or so are shown.
TEST(Scale, SamplesBeyondTheLastIndexAreLeftOut) {
    const test::TempDir dir;
    const std::string path = dir.file("endless.raw");
    constexpr std::int64_t frames = 3'000'000'000;
    if (!makeSparse(path, 64 + frames * 2))
        GTEST_SKIP() << "no sparse file of 6 GB";
    put16(path, 64 + (lastIndex - 5) * 2, 1234);
    InterleavedReader reader;
    ASSERT_TRUE(readLayout(reader, 1, "30000"));
    ASSERT_TRUE(reader.open(path.c_str())) << reader.lastErrorText();
    EXPECT_EQ(reader.maxDataIndex(), lastIndex);
    EXPECT_EQ(reader.sampleCount(), lastIndex + 1);
    EXPECT_EQ(rawOf(reader, 0, lastIndex - 5, lastIndex - 5).front(), 1234);
    test::readAround(reader);
    std::vector<float> beyond(8, 5.0F);
    EXPECT_EQ(reader.getData(0, lastIndex + 10L, lastIndex + 17L, beyond.data(), 1.0, 0), 8);
    EXPECT_EQ(beyond, std::vector<float>(8, 0.0F));
}

TEST(Scale, TwoThousandChannels) {
    constexpr int channels = 2000;
    test::EdfFile file;
    for (int i = 0; i < channels; ++i)
        file.signal("E" + std::to_string(i + 1), 4);
    file.records(20).samples(
        [](int signal, std::int64_t i) { return static_cast<std::int32_t>(signal * 8 + i % 8); });
    test::Opened<EDF90Reader> reader(file);
    ASSERT_TRUE(reader.isOpen) << reader.lastErrorText();
    ASSERT_EQ(reader.channelCount(), channels);
    for (const int channel : {0, 1, 999, 1998, 1999}) {
        EXPECT_EQ(reader.channelName(channel), "E" + std::to_string(channel + 1));
        EXPECT_EQ(reader.indexOfG1(reader.channelName(channel)), channel);
        EXPECT_EQ(rawOf(reader, channel, 79, 79).front(), channel * 8 + 7);
    }
}

struct Rate {
    const char* duration;
    int perRecord;
    double hertz;
};

TEST(Scale, RatesFromAnHourlyTrendToIntracellularRecordings) {
    for (const Rate& rate :
         {Rate{"62.5", 1, 0.016}, Rate{"3600", 1, 1.0 / 3600}, Rate{"1", 30000, 30000.0}}) {
        test::EdfFile file;
        file.signal("EEG C3", rate.perRecord).duration(rate.duration).records(8);
        test::Opened<EDF90Reader> reader(file);
        ASSERT_TRUE(reader.isOpen) << reader.lastErrorText();
        EXPECT_DOUBLE_EQ(reader.samplingRate(), rate.hertz);
        EXPECT_EQ(reader.sampleCount(), 8L * rate.perRecord);
        EXPECT_DOUBLE_EQ(reader.duration(), 8 * rate.perRecord / rate.hertz);
        for (const long i : {0L, 3L * rate.perRecord, 8L * rate.perRecord - 1})
            EXPECT_EQ(rawOf(reader, 0, i, i).front(), file.sample(0, i)) << rate.hertz;
        const double last = (8.0 * rate.perRecord - 1) / rate.hertz;
        EXPECT_NEAR(reader.getElapsedTime(reader.getClockTime(last)), last, 1e-9);
    }
    const test::TempDir dir;
    for (const char* hertz : {"0.016", "30000"}) {
        InterleavedReader reader;
        ASSERT_TRUE(readLayout(reader, 2, hertz));
        ASSERT_TRUE(reader.open(dir.write("a.raw", std::string(4096, '\1')).c_str()));
        EXPECT_EQ(rawOf(reader, 1, 1007, 1007).front(), 257) << hertz;
        EXPECT_EQ(rawOf(reader, 1, 1008, 1008).front(), 0) << hertz;
    }
}

// Every day of a leap year, with a time of day that differs from day to day.
TEST(Scale, AYearOfStartTimes) {
    constexpr int monthDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const test::TempDir dir;
    EDF90Reader reader;
    int day = 0;
    const auto two = [](int number) {
        return std::string(1, static_cast<char>('0' + number / 10)) +
               static_cast<char>('0' + number % 10);
    };
    for (int month = 1; month <= 12; ++month)
        for (int date = 1; date <= monthDays[month - 1]; ++date, ++day) {
            const int hour = day % 24, minute = day * 7 % 60, second = day * 11 % 60;
            test::EdfFile file;
            file.signal("EEG C3", 4)
                .start(two(date) + "." + two(month) + ".24",
                       two(hour) + "." + two(minute) + "." + two(second));
            ASSERT_TRUE(reader.open(dir.write("day.edf", file.bytes()).c_str()));
            EXPECT_DOUBLE_EQ(reader.getClockTime(0.0), hour * 3600 + minute * 60 + second);
            EXPECT_EQ(reader.patientRec()->testDate, "2024." + two(month) + "." + two(date));
            EXPECT_TRUE(reader.openFindings().empty()) << reader.openFindings().front().text;
        }
    EXPECT_EQ(day, 366);
}

} // namespace
} // namespace kvsig
