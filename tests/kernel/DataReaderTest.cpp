#include "kvsig/kernel/DataReader.h"

#include "support/FakeReader.h"
#include "support/LogCapture.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace kvsig {
namespace {

using test::FakeChannel;
using test::FakeReader;
using test::FakeRecording;
using test::LogCapture;
using testing::ElementsAre;

FakeRecording withChannels(std::vector<FakeChannel> channels) {
    FakeRecording recording;
    recording.channels = std::move(channels);
    return recording;
}

TEST(DataReader, OpeningFollowsItsSequence) {
    FakeReader reader(withChannels({{"Fp1"}}));
    reader.setLastError(3);
    ASSERT_TRUE(reader.open("folder/a.eeg"));
    EXPECT_STREQ(reader.fileName(), "folder/a.eeg");
    EXPECT_EQ(reader.getLastError(), 0);
    EXPECT_THAT(reader.takeCalls(),
                ElementsAre("openFile", "loadChannelInfo", "_grid1(0)", "_grid2(0)",
                            "_channelName(0)", "_grid1(0)", "_grid2(0)", "_channelType(0)",
                            "_channelUnits(0)", "_physioLow(0)", "_physioHigh(0)", "_digitalLow(0)",
                            "_digitalHigh(0)", "_calibration(0)", "_dcOffset(0)", "readSampleInfo",
                            "getPatientRec", "setPageDuration(5.000000)"));
}

TEST(DataReader, AFailedOpenEndsWhereItFailed) {
    FakeReader reader(withChannels({}));
    const auto callsOf = [&reader](bool& failing) {
        failing = true;
        EXPECT_FALSE(reader.open("a"));
        failing = false;
        return reader.takeCalls();
    };
    EXPECT_THAT(callsOf(reader.file.openFails), ElementsAre("openFile"));
    EXPECT_EQ(reader.getLastError(), 1) << "the format's own code";
    EXPECT_THAT(callsOf(reader.file.channelInfoFails),
                ElementsAre("openFile", "loadChannelInfo", "close"));
    EXPECT_EQ(reader.getLastError(), 2);
    EXPECT_THAT(callsOf(reader.file.sampleInfoFails),
                ElementsAre("openFile", "loadChannelInfo", "readSampleInfo", "close"));
    EXPECT_EQ(reader.getLastError(), 2);
    EXPECT_TRUE(reader.open("a")) << "a later attempt starts afresh";
    EXPECT_EQ(reader.getLastError(), 0);
}

TEST(DataReader, ErrorsComeWithASentence) {
    FakeReader reader;
    reader.file.openFails = true;
    reader.open("folder/a.eeg");
    EXPECT_STREQ(reader.lastErrorText(), "folder/a.eeg: the file cannot be opened");
    reader.setLastError(2);
    EXPECT_STREQ(reader.lastErrorText(), "folder/a.eeg: no usable channels or samples");
    LogCapture log;
    EXPECT_FALSE(reader.refuse(3, "field X is 7"));
    EXPECT_EQ(reader.getLastError(), 3);
    EXPECT_STREQ(reader.lastErrorText(), "folder/a.eeg: field X is 7");
    EXPECT_THAT(log.take(logWarning), ElementsAre("folder/a.eeg: field X is 7"));
    reader.file.openFails = false;
    reader.open("folder/b.eeg");
    EXPECT_STREQ(reader.lastErrorText(), "");
}

TEST(DataReader, LongPathsAreCutForTheHostOnly) {
    FakeReader reader;
    const std::string path(1000, 'p');
    ASSERT_TRUE(reader.open(path.c_str()));
    EXPECT_EQ(std::string(reader.fileName()), path.substr(0, 259));
    EXPECT_EQ(reader.filePath(), path);
    ASSERT_TRUE(reader.open(reader.fileName())) << "its own text";
    EXPECT_EQ(reader.filePath(), path.substr(0, 259));
    ASSERT_TRUE(reader.open(nullptr));
    EXPECT_STREQ(reader.fileName(), "");
}

// Every getter's answer for one channel in one line.
std::string factsOf(DataReader& reader, int channel) {
    std::ostringstream out;
    out << reader.channelName(channel) << '|' << reader.grid1(channel) << '|'
        << reader.grid2(channel) << '|' << reader.channelType(channel) << '|'
        << reader.channelSubType(channel) << '|' << reader.channelUnits(channel) << '|'
        << reader.calibration(channel) << '|' << reader.dcOffset(channel) << '|'
        << reader.physioLow(channel) << '|' << reader.physioHigh(channel) << '|'
        << reader.digitalLow(channel) << '|' << reader.digitalHigh(channel) << '|'
        << reader.zeroChannel(channel);
    return out.str();
}

const FakeChannel temperature{
    "Temp", "",   0.5,    -3.0, "Rectal temperature", "degC", std::int16_t{100},
    30.5,   42.0, -32768, 32767};

TEST(DataReader, ChannelFactsAreTheFilesOrTheDefaults) {
    FakeReader reader(withChannels({{"C3", "A2"}, temperature}));
    ASSERT_TRUE(reader.open("a"));
    EXPECT_EQ(factsOf(reader, 0), "C3-A2|C3|A2|1|0|uV|1|0|-1|1|-2048|2048|0");
    EXPECT_EQ(factsOf(reader, 1),
              "Rectal temperature|Temp||100|0|degC|0.5|-3|30.5|42|-32768|32767|0");
}

TEST(DataReader, ChannelsAreThoseOfTableAndCount) {
    const std::string nothing = "|||0|0||0|0|0|0|0|0|0";
    FakeReader reader(withChannels({temperature, temperature}));
    EXPECT_EQ(factsOf(reader, 0), nothing) << "not open";
    ASSERT_TRUE(reader.open("a"));
    EXPECT_EQ(factsOf(reader, 2), nothing);
    reader.setChannelCount(1);
    EXPECT_EQ(factsOf(reader, 1), nothing) << "in the table, past the count";
    reader.setChannelCount(3);
    EXPECT_EQ(factsOf(reader, 2), nothing) << "in the count, past the table";
    reader.setZeroChannel(2, true);
    reader.setChannelCount(100000);
    EXPECT_EQ(reader.channelCount(), 32767);
    reader.setChannelCount(-5);
    EXPECT_EQ(factsOf(reader, 0), nothing);
}

TEST(DataReader, NamesAreCutToTheirFieldsAndGiveWayToNumbers) {
    FakeChannel channel{std::string(20, 'g'), std::string(16, 'r')};
    channel.units = std::string(30, 'u');
    FakeReader reader(withChannels({channel, {"Fp1"}}));
    ASSERT_TRUE(reader.open("a"));
    const std::string name = std::string(20, 'g') + "-" + std::string(10, 'r');
    const std::string cut = "|" + std::string(15, 'g') + "|" + std::string(15, 'r') + "|1|0|" +
                            std::string(15, 'u') + "|";
    EXPECT_THAT(factsOf(reader, 0), testing::StartsWith(name + cut));
    reader.setGridNamesAsNumbers(true);
    EXPECT_STREQ(reader.channelName(1), "2-2");
    reader.setGridNamesAsNumbers(false);
    EXPECT_STREQ(reader.channelName(1), "Fp1-Ref") << "the texts are kept";
}

TEST(DataReader, ScalpChannelsDecideWhetherTheMapIsReferential) {
    const struct {
        const char* what;
        std::vector<FakeChannel> channels;
        int referential;
        const char* reference;
    } cases[] = {
        {"one reference", {{"Fp1", "A1"}, {"fp2", "a1"}}, 1, "A1"},
        {"two references", {{"Fp1", "A1"}, {"Fp2", "A2"}}, 0, ""},
        {"off the scalp nothing counts", {{"EKG", "X"}, {"Fp1", "A1"}, {"EMG", "Y"}}, 1, "A1"},
        {"no scalp channel", {{"EKG", "X"}, {"EMG", "Y"}}, 1, "Ref"},
        {"a missing one differs", {{"Fp1", "A1"}, {"Fp2", ""}}, 0, ""},
    };
    for (const auto& c : cases) {
        FakeReader reader(withChannels(c.channels));
        ASSERT_TRUE(reader.open("a"));
        EXPECT_EQ(reader.isMapReferential(), c.referential) << c.what;
        EXPECT_STREQ(reader.refGrid(), c.reference) << c.what;
    }
}

TEST(DataReader, OnlyNamesOfTheFinerSystemSetTheirFlag) {
    FakeReader reader;
    const auto isFiner = [&reader](const char* name) {
        reader.file.channels[1].grid1 = name;
        EXPECT_TRUE(reader.open("a"));
        return reader.isMap1010();
    };
    for (const char* name : {"T7", "T8", "P7", "P8"}) {
        EXPECT_TRUE(isFiner(name)) << name;
        EXPECT_FALSE(isFiner("T3")) << "cleared by the next recording";
    }
    for (const char* name : {"t7", "P9", "T77", "T", "FT7"})
        EXPECT_FALSE(isFiner(name)) << name;
}

TEST(DataReader, ReopeningDropsThePagesOfTheOtherRecording) {
    FakeReader reader;
    ASSERT_TRUE(reader.open("a"));
    float value = 0;
    reader.getData(2, 60, 60, &value, 1.0, 0);
    reader.file.raw = [](int, long) { return 77; };
    LogCapture log;
    ASSERT_TRUE(reader.open("b"));
    EXPECT_THAT(log.take(), ElementsAre("DataReader: Removing all 1 pages"));
    reader.getData(2, 60, 60, &value, 1.0, 0);
    EXPECT_EQ(value, 77.0F);
}

TEST(DataReader, DurationNeedsARate) {
    FakeReader reader;
    ASSERT_TRUE(reader.open("a"));
    EXPECT_EQ(reader.duration(), 100.0);
    EXPECT_EQ(reader.xStart(), 0.0);
    for (double rate : {0.0, -10.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
        reader.setSamplingRate(rate);
        EXPECT_EQ(reader.duration(), 0.0) << rate;
    }
    reader.setMaxDataIndex(std::numeric_limits<long>::max());
    EXPECT_EQ(reader.sampleCount(), 2147483648L) << "indices are held at 32 bits";
}

// The names change by every way that there is; an index of the old ones would answer wrongly.
TEST(DataReader, NamesOfManyChannelsFollowTheirChanges) {
    class RenamingReader : public FakeReader {
      public:
        using FakeReader::FakeReader;
        const char* grid1(int channel) override { return channel == 150 ? "Own" : ""; }
    };
    FakeRecording file = withChannels({});
    for (int i = 0; i < 200; ++i)
        file.channels.push_back({"E" + std::to_string(i % 150)});
    FakeReader reader(file);
    ASSERT_TRUE(reader.open("many"));
    EXPECT_EQ(reader.indexOfG1("e140"), 140);
    EXPECT_EQ(reader.indexOfG1("E10"), 10) << "the first of two";
    for (const char* none : {"E150", static_cast<const char*>(nullptr)})
        EXPECT_EQ(reader.indexOfG1(none), -1);
    EXPECT_EQ(reader.indexOfG2("rEF"), 0);
    std::istringstream map("[M]\nCz-Ref=141\nE140-Ref=3\n");
    ASSERT_TRUE(reader.applyChannelMapDefn("M", map));
    EXPECT_EQ(reader.indexOfG1("E140"), 2);
    EXPECT_EQ(reader.indexOfG1("cz"), 140);
    reader.setGridNamesAsNumbers(true);
    EXPECT_EQ(reader.indexOfG1("cz"), -1);
    EXPECT_EQ(reader.indexOfG1("141"), 140);
    reader.setGridNamesAsNumbers(false);
    ASSERT_TRUE(reader.applyChannelMapDefn("(Default)", map));
    EXPECT_EQ(reader.indexOfG1("cz"), -1);
    EXPECT_EQ(reader.indexOfG1("E140"), 140);
    reader.setChannelCount(100);
    EXPECT_EQ(reader.indexOfG1("E140"), -1);
    EXPECT_EQ(reader.indexOfG1("E99"), 99);

    RenamingReader renaming(file); // a format with names of its own is asked
    ASSERT_TRUE(renaming.open("many"));
    EXPECT_EQ(renaming.indexOfG1("own"), 150);
    EXPECT_EQ(renaming.indexOfG1("E140"), -1);
}

std::uintptr_t addressOf(const void* object) { return reinterpret_cast<std::uintptr_t>(object); }

TEST(DataReader, ItemsAreReadAndSetByNumber) {
    FakeReader reader;
    reader.lag = 4;
    reader.file.channels[1].dcOffset = -12.5;
    ASSERT_TRUE(reader.open("a"));
    EXPECT_EQ(reader.getItem(1, 0, 0), 1);
    EXPECT_EQ(reader.getItem(2, 0, 0), 4);
    for (int item : {0, 3, 1000, 1002, std::numeric_limits<int>::min()})
        EXPECT_EQ(reader.getItem(item, 0, 0), item);
    const std::intptr_t offset = reader.getItem(1001, 1, 0);
    EXPECT_EQ(*reinterpret_cast<const double*>(offset), -12.5);
    EXPECT_EQ(reader.getItem(1001, 7, 0), offset) << "one shared double";
    EXPECT_EQ(*reinterpret_cast<const double*>(offset), 0.0) << "out of range";

    std::ostringstream stream;
    reader.setItem(2, 0, 0, 9);
    EXPECT_EQ(reader.lag, 9);
    const std::string longest(300, 'p');
    const std::string paths = ";/a b;;C:\\x;" + longest;
    reader.setItem(3, 0, 0, addressOf(paths.c_str()));
    reader.setItem(1000, 0, 0, addressOf(static_cast<std::ostream*>(&stream)));
    EXPECT_THAT(stream.str(), testing::StartsWith("[FileInfo]\nFile=a\n"));
    for (int item : {3, 1000}) // no text, no stream: ignored
        reader.setItem(item, 0, 0, 0);
    ASSERT_EQ(reader.getPaths().size(), 3U);
    EXPECT_STREQ(reader.getPaths()[0].path, "/a b");
    EXPECT_STREQ(reader.getPaths()[1].path, "C:\\x");
    EXPECT_EQ(reader.getPaths()[2].path, longest.substr(0, 260));
    reader.setPaths(nullptr);
    EXPECT_TRUE(reader.getPaths().empty());
}

TEST(DataReader, TestInfoSummarisesTheRecording) {
    FakeReader reader;
    reader.file.rate = 0.5;
    ASSERT_TRUE(reader.open("a.eeg"));
    std::ostringstream stream;
    stream << std::setw(20) << std::hex;
    EXPECT_TRUE(reader.testInfo(stream));
    EXPECT_EQ(stream.str(), "FileName: a.eeg\nTestDuration: 00:33:20\nChannels: 3\n"
                            "SamplingRate: 0.5\nMultiFile:\tNo\n");
}

TEST(DataReader, InterfacesAreAnsweredByIdentifierAndTheLastReleaseDestroys) {
    bool destroyed = false;
    auto* reader = new FakeReader;
    reader->destroyed = &destroyed;
    EXPECT_EQ(reader->Release(), 0U) << "never handed out";
    EXPECT_EQ(reader->AddRef(), 0U);
    GUID other = IID_IDataReader;
    other.Data4[7] = 0x44;
    void* object = &other;
    EXPECT_EQ(reader->QueryInterface(other, &object), static_cast<HRESULT>(0x80004002U));
    EXPECT_EQ(object, &other) << "untouched";
    EXPECT_EQ(reader->QueryInterface(IID_IUnknown, nullptr), E_NOINTERFACE);
    ASSERT_EQ(reader->QueryInterface(IID_IUnknown, &object), S_OK);
    EXPECT_EQ(object, static_cast<IUnknown*>(reader));
    EXPECT_EQ(reader->Release(), 0U);
    EXPECT_FALSE(destroyed);
    LogCapture log;
    EXPECT_EQ(static_cast<IDataReader*>(object)->Release(), 0U);
    EXPECT_TRUE(destroyed);
    EXPECT_THAT(log.take(), ElementsAre("DataReader: Removing all pages"));
}

} // namespace
} // namespace kvsig
