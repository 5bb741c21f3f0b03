#include "kvsig/readers/BDFReader.h"
#include "kvsig/readers/EDF90Reader.h"
#include "kvsig/readers/InterleavedReader.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/EdfFile.h"
#include "support/Opened.h"
#include "support/RawFile.h"
#include "support/ReadAround.h"

#include <chrono>
#include <cstdio>

// Recordings as large, as wide, as slow and as fast as they come. Long ones are sparse files.
namespace kvsig::test {
namespace {

constexpr long lastIndex = std::numeric_limits<std::int32_t>::max();

void put16(const std::string& path, std::int64_t offset, std::int16_t value) {
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(offset);
    file.put(static_cast<char>(value & 0xFF)).put(static_cast<char>(value >> 8));
}

// A sparse file holds what the disk cannot; systems without them would fill it.
bool makeSparse(const std::string& path, std::int64_t bytes) {
    std::error_code failed;
    std::ofstream(path).put('x');
    fs::resize_file(path, static_cast<std::uintmax_t>(bytes), failed);
    return !failed;
}

TEST(Scale, RawDataBeyondFourGigabytesIsReadAtItsEnd) {
    const TempDir dir;
    const std::string path = dir.file("long.raw");
    constexpr std::int64_t frames = 700'000'000;
    if (!makeSparse(path, 64 + frames * 8))
        GTEST_SKIP() << "no sparse file of 5.6 GB";
    put16(path, 64 + (frames - 1) * 8 + 6, -321);
    put16(path, 64 + (std::int64_t{1} << 29) * 8, 77); // byte 2^32 of the samples
    InterleavedReader reader;
    ASSERT_TRUE(readAttributes(reader, RawFile().channels(4).headerLength(64).attributes()));
    ASSERT_TRUE(reader.open(path.c_str())) << reader.lastErrorText();
    EXPECT_EQ(reader.sampleCount(), frames);
    EXPECT_EQ(rawOf(reader, 3, frames - 2, frames), (std::vector<std::int32_t>{0, -321, 0}));
    EXPECT_EQ(rawOf(reader, 0, 1L << 29, 1L << 29).front(), 77);
}

// Indices have 32 bits: of a longer recording the first 2^31 - 1 samples or so are shown.
TEST(Scale, SamplesBeyondTheLastIndexAreLeftOut) {
    const TempDir dir;
    const std::string path = dir.file("endless.raw");
    constexpr std::int64_t frames = 3'000'000'000;
    if (!makeSparse(path, 64 + frames * 2))
        GTEST_SKIP() << "no sparse file of 6 GB";
    put16(path, 64 + (lastIndex - 5) * 2, 1234);
    InterleavedReader reader;
    ASSERT_TRUE(readAttributes(reader, RawFile().channels(1).headerLength(64).attributes()));
    ASSERT_TRUE(reader.open(path.c_str())) << reader.lastErrorText();
    EXPECT_EQ(reader.maxDataIndex(), lastIndex);
    EXPECT_EQ(reader.sampleCount(), lastIndex + 1);
    EXPECT_EQ(rawOf(reader, 0, lastIndex - 5, lastIndex - 5).front(), 1234);
    readAround(reader);
    std::vector<float> beyond(8, 5.0F);
    EXPECT_EQ(reader.getData(0, lastIndex + 10L, lastIndex + 17L, beyond.data(), 1.0, 0), 8);
    EXPECT_EQ(beyond, std::vector<float>(8, 0.0F));
}

TEST(Scale, TwoThousandChannels) {
    EdfFile file;
    for (int i = 0; i < 2000; ++i)
        file.signal("E" + std::to_string(i + 1), 4);
    file.records(20).samples(
        [](int signal, std::int64_t i) { return static_cast<std::int32_t>(signal * 8 + i % 8); });
    Opened<EDF90Reader> reader(file);
    ASSERT_TRUE(reader.isOpen) << reader.lastErrorText();
    ASSERT_EQ(reader.channelCount(), 2000);
    for (const int channel : {0, 1, 999, 1999}) {
        EXPECT_EQ(reader.indexOfG1(("E" + std::to_string(channel + 1)).c_str()), channel);
        EXPECT_EQ(rawOf(reader, channel, 79, 79).front(), channel * 8 + 7);
    }
}

// Every day of a leap year, with a time of day that differs from day to day.
TEST(Scale, AYearOfStartTimes) {
    const TempDir dir;
    EDF90Reader reader;
    using namespace std::chrono;
    for (sys_days day = 2024y / 1 / 1; day < sys_days(2025y / 1 / 1); day += days(1)) {
        const year_month_day date = day;
        const int number = static_cast<int>((day - sys_days(2024y / 1 / 1)).count());
        const int time[] = {number % 24, number * 7 % 60, number * 11 % 60};
        char texts[3][16];
        std::snprintf(texts[0], 16, "%02u.%02u.24", unsigned(date.day()), unsigned(date.month()));
        std::snprintf(texts[1], 16, "%02d.%02d.%02d", time[0], time[1], time[2]);
        std::snprintf(texts[2], 16, "2024.%02u.%02u", unsigned(date.month()), unsigned(date.day()));
        const EdfFile file = EdfFile().signal("EEG C3", 4).start(texts[0], texts[1]);
        ASSERT_TRUE(reader.open(dir.write("day.edf", file.bytes()).c_str()));
        EXPECT_EQ(reader.getClockTime(0.0), time[0] * 3600 + time[1] * 60 + time[2]);
        EXPECT_EQ(reader.patientRec()->testDate, std::string(texts[2]));
        EXPECT_TRUE(reader.openFindings().empty()) << texts[0];
    }
}

TEST(Scale, RatesFromAnHourlyTrendToIntracellularRecordings) {
    struct Rate {
        const char* duration;
        int perRecord;
        double hertz;
    };
    for (const Rate& rate :
         {Rate{"62.5", 1, 0.016}, Rate{"3600", 1, 1.0 / 3600}, Rate{"1", 30000, 30000.0}}) {
        EdfFile file;
        file.signal("EEG C3", rate.perRecord).duration(rate.duration).records(8);
        Opened<EDF90Reader> reader(file);
        ASSERT_TRUE(reader.isOpen) << reader.lastErrorText();
        EXPECT_DOUBLE_EQ(reader.samplingRate(), rate.hertz);
        EXPECT_EQ(reader.sampleCount(), 8L * rate.perRecord);
        EXPECT_DOUBLE_EQ(reader.duration(), 8 * rate.perRecord / rate.hertz);
        for (const long i : {0L, 3L * rate.perRecord, 8L * rate.perRecord - 1})
            EXPECT_EQ(rawOf(reader, 0, i, i).front(), file.sample(0, i)) << rate.hertz;
        const double last = (8.0 * rate.perRecord - 1) / rate.hertz;
        EXPECT_NEAR(reader.getElapsedTime(reader.getClockTime(last)), last, 1e-9);
    }
}

} // namespace
} // namespace kvsig::test
