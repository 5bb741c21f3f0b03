#include "kvsig/readers/MicromedReader.h"

#include "kvsig/registry/FrontDoor.h"
#include "support/LogCapture.h"
#include "support/MicromedFile.h"
#include "support/Opened.h"
#include "support/ReaderFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

struct Micromed : ReaderFixture<MicromedReader> {
    Micromed() : ReaderFixture("EEG_1.TRC") {}

    static constexpr double start = 23 * 3600 + 5 * 60 + 7;
};

TEST_F(Micromed, ChannelsAreFoundAndCalibratedThroughTheirElectrodes) {
    const struct {
        MicromedFile::Channel facts;
        const char* units;
        short type;
    } cases[] = {
        {{"Fp1"}, "uV", 1},
        {{.positive = "LongNm", .ground = 100, .physicalLow = -50, .physicalHigh = 150}, "uV", 1},
        {{.positive = "SpO2", .ground = 0, .physicalLow = 0, .physicalHigh = 100, .unit = 100},
         "%",
         100},
        {{.positive = "ECG", .negative = "AVG", .unit = 1}, "mV", 100},
        {{.positive = "x", .high = 9, .ground = 5, .unit = 7}, "uV", 1},
    };
    MicromedFile file;
    for (const auto& c : cases)
        file.channel(c.facts);
    ASSERT_TRUE(opens(file.rate(128).frames(200))) << reader.lastErrorText();
    EXPECT_EQ(reader.samplingRate(), 128);
    EXPECT_EQ(reader.bytesPerSample(), 4) << "a zero of 100 leaves more than 16 bits";
    for (int c = 0; c < 5; ++c) {
        const auto& facts = cases[c].facts;
        EXPECT_EQ(reader.channelType(c), cases[c].type);
        EXPECT_STREQ(reader.channelUnits(c), cases[c].units);
        const double scale = static_cast<double>(facts.physicalHigh - facts.physicalLow) /
                             (facts.high - facts.low + 1);
        for (const long i : {0L, 1L, 199L})
            EXPECT_FLOAT_EQ(
                valuesOf(reader, c, i, i)[0],
                static_cast<float>(static_cast<double>(file.stored(c, i) - facts.ground) * scale));
    }
    EXPECT_STREQ(reader.channelName(1), "LongNm-G2");
    EXPECT_STREQ(reader.grid2(3), "AVG");
    EXPECT_STREQ(reader.patientRec()->last, "Mustermann");
    EXPECT_STREQ(reader.patientRec()->first, "Erika");
    EXPECT_STREQ(reader.patientRec()->birthDate, "1964.08.12");
    EXPECT_STREQ(reader.patientRec()->testDate, "2026.07.04");
    EXPECT_STREQ(reader.patientRec()->testTime, "23:05:07");
}

TEST_F(Micromed, SamplesOfFourBytesAreSignedWhereTheirLimitsSaySo) {
    for (const int low : {0, -40000}) {
        MicromedFile file;
        const int ground = low < 0 ? 0 : 32768;
        file.channel({.positive = "a", .low = low, .high = 65535, .ground = ground});
        ASSERT_TRUE(opens(file.sampleBytes(4).frames(50)));
        for (const long i : {0L, 1L, 48L, 49L})
            EXPECT_NEAR(valuesOf(reader, 0, i, i)[0],
                        static_cast<double>(file.stored(0, i) - ground) * 6400 / (65536 - low),
                        1e-3);
        EXPECT_THAT(findings(), ElementsAre(HasSubstr(low < 0 ? " signed ones" : " unsigned")));
    }
}

TEST_F(Micromed, PiecesOfACutRecordingKeepTheirClock) {
    MicromedFile file;
    file.channel({"a"}).rate(100).frames(300);
    ASSERT_TRUE(opens(MicromedFile(file).piece(500, 0).piece(2000, 100).piece(90000, 250)));
    ASSERT_EQ(reader.sampleTimeCount(), 3);
    EXPECT_EQ(reader.getClockTime(0.0), start + 5);
    EXPECT_EQ(reader.getClockTime(1.5), start + 20.5);
    EXPECT_EQ(reader.getClockTime(2.75), start + 900.25);
    // What was cut off before the first piece may pass midnight: the recording starts behind it.
    ASSERT_TRUE(opens(MicromedFile(file).piece(700'000, 0).piece(8'640'000, 100)));
    EXPECT_EQ(reader.getClockTime(0.0), start + 7000 - 86400);
    EXPECT_EQ(reader.getClockTime(1.5), start + 0.5);
    EXPECT_STREQ(reader.patientRec()->testDate, "2026.07.05");
    EXPECT_STREQ(reader.patientRec()->testTime, "01:01:47");
    dir.write("eeg_1.evt", "<EventFile><Events><Event><Begin>2026-07-05T23:05:07.5</Begin>"
                           "</Event></Events></EventFile>");
    EXPECT_EQ(events(), std::vector<std::string>{"150 "});
    ASSERT_TRUE(opens(MicromedFile(file).piece(500, 0).piece(2000, 300)));
    EXPECT_EQ(reader.sampleTimeCount(), 1) << "a piece behind the end";
    EXPECT_THAT(findings(),
                ElementsAre("piece 2 begins at sample 300, 300 are in the file: it was cut"));
    for (const auto& [first, second] : {std::pair(0, 0), {100, 50}, {7, 100}}) {
        ASSERT_TRUE(opens(MicromedFile(file)
                              .piece(0, static_cast<std::uint32_t>(first))
                              .piece(900, static_cast<std::uint32_t>(second))));
        EXPECT_EQ(reader.getClockTime(2.5), start + 2.5);
        EXPECT_EQ(findings().size(), first + second > 0 ? 1U : 0U);
    }
}

TEST_F(Micromed, EventsOfAllZonesAndOfTheFileBesideIt) {
    MicromedFile file;
    file.channel({"a"}).rate(100).frames(300);
    LogCapture log;
    file.note(0, "begin").note(50, "eyes closed");
    ASSERT_TRUE(opens(MicromedFile(file).note(900, "behind")));
    EXPECT_EQ(events().size(), 2U);
    EXPECT_THAT(log.take(logWarning),
                ElementsAre(HasSubstr("TRC: events outside the recording are left out (1)")));
    file.note(0, "").note(60, "never");
    file.flag(10, 35).flag(0, 0).flag(40, 20).event('A', 3, 120, 170).event('B', 9, 0, 7);
    file.trigger(0, 0).trigger(77, 4096).trigger(300, 5).trigger(299, 6);
    const std::vector<std::string> own = {"0 begin",           "0+70 EVENT B 9", "10+250 Flag",
                                          "40 Flag",           "50 eyes closed", "77 4096",
                                          "120+500 EVENT A 3", "299 6"};
    ASSERT_TRUE(opens(file));
    EXPECT_EQ(events(), own);
    dir.write("eeg_1.evt", "<EventFile><Events><Event><Begin>2026-07-04T23:05:09.5</Begin>"
                           "<End>2026-07-04T23:05:10.00+02:00</End><Text>a &amp; b</Text>"
                           "<ExtraText>left</ExtraText></Event>"
                           "<Event><Begin>soon</Begin><Text>no time</Text></Event>"
                           "<Event><Begin>2026-07-05T23:05:09</Begin><End>?</End></Event>"
                           "</Events></EventFile>");
    ASSERT_TRUE(opens(file));
    std::vector<std::string> all = own;
    all.insert(all.end() - 1, "250+500 a & b left");
    EXPECT_EQ(events(), all);
    EXPECT_THAT(log.take(logWarning),
                ElementsAre(HasSubstr("evt: events whose Begin is no date and time as yyyy-mm-dd "
                                      "hh:mm:ss are left out (1)"),
                            HasSubstr("End is no date and time as yyyy-mm-dd hh:mm:ss are shown"),
                            HasSubstr("evt: events outside the recording are left out (1)")));
    dir.write("eeg_1.evt", "<EventFile><Events><Event><Begin>2019-07-04T23:05:09</Begin></Event>"
                           "</Events></EventFile>");
    EXPECT_EQ(events(), own);
    EXPECT_THAT(log.take(logWarning),
                ElementsAre(HasSubstr("all its events (1) lie outside the recording: it may be")));
    ASSERT_TRUE(opens(poked(file.bytes(), 128, u8(0) + u8(0) + u8(0)))); // no date
    log.take(logWarning);
    EXPECT_EQ(events().size(), own.size() + 1);
    EXPECT_THAT(log.take(logWarning), ElementsAre(HasSubstr("the recording has no date: events")));
    for (const char* damaged : {"", "<EventFile><Events>", "<a/>", "\xFF\xFE"}) {
        dir.write("eeg_1.evt", damaged);
        ASSERT_TRUE(opens(file));
        EXPECT_EQ(events(), own) << damaged;
        EXPECT_THAT(log.take(logWarning), ElementsAre(HasSubstr("its events are left out: ")));
    }
    // A zone that leaves the file is none.
    dir.write("eeg_1.evt", "<a/>");
    ASSERT_TRUE(opens(poked(file.piece(500, 0).bytes(), 176 + 14 * 16 + 8, u32(~0U))));
    EXPECT_EQ(events().size(), own.size() - 2);
    EXPECT_THAT(findings(), ElementsAre(AllOf(HasSubstr("zone TRIGGER (offset 4294967295"),
                                              HasSubstr("its events are left out"))));
    ASSERT_TRUE(opens(poked(file.bytes(), 176 + 4 * 16 + 12, u32(~0U))));
    EXPECT_EQ(reader.getClockTime(0.0), start);
    EXPECT_THAT(findings(), ElementsAre(HasSubstr("bytes: pauses are not shown")));
}

TEST_F(Micromed, ZonesThatHoldMoreThanIsReadAreTold) {
    const std::string good = MicromedFile().channel({"a"}).frames(500).bytes();
    const auto withZone = [](const std::string& bytes, std::size_t zone, std::size_t offset,
                             std::size_t length) {
        return poked(bytes, 176 + 16 * zone + 8, u32(offset) + u32(length));
    };
    for (const std::size_t length : {800U, 808U}) { // samples taken for flags
        ASSERT_TRUE(opens(withZone(good, 3, MicromedFile::dataOffset(), length)));
        EXPECT_EQ(findings().size(), length > 800 ? 1U : 0U);
    }
    EXPECT_THAT(findings(), tells("zone FLAGS holds more than 100 records: the rest is left out"));
    std::string pieces;
    for (std::size_t i = 0; i <= 100; ++i)
        pieces += u32(5 + 10 * i) + u32(i);
    ASSERT_TRUE(opens(withZone(good + pieces, 4, good.size(), pieces.size())));
    EXPECT_EQ(reader.sampleTimeCount(), 100);
    EXPECT_THAT(findings(), tells("zone TRONCA holds more than 100 pieces"));
}

TEST_F(Micromed, OtherVariantsAndLyingHeadersAreRefused) {
    const std::string good = MicromedFile().channel({"a"}).channel({"b"}).bytes();
    const std::size_t order = MicromedFile::zoneStart("ORDER");
    const std::size_t labels = MicromedFile::zoneStart("LABCOD");
    refuses({
        {poked(good, 175, u8(0)), 3, "header type (offset 175) is 0: a System 1 recording"},
        {poked(good, 175, u8(2)), 3, "a System 2 recording"},
        {poked(good, 175, u8(3)), 3, "an early System 98 recording"},
        {poked(good, 175, u8(9)), 3, "header type (offset 175) is 9"},
        {poked(good, 0, "GALILEO EEG TRACE FILE"), 3, "Galileo trace file"},
        {poked(good, 150, u16(1)), 3, "compressed recordings"},
        {poked(good, 144, u16(6)), 3, "2 channels of 2 bytes take 4: a variant"},
        {poked(good, labels + 44, u16(2)), 3, "channels of several rates"},
        {poked(good, 176, "ORDEN"), 2,
         "is \"ORDEN\" and the name of a zone (offset 192) is \"LABCOD\", not OR"},
        {poked(good, 142, u16(0)), 2, "number of channels (offset 142) is 0"},
        {poked(good, 148, u16(3)), 2, "bytes of a sample (offset 148) is 3"},
        {poked(good, 146, u16(0)), 2, "basic sampling rate (offset 146) is 0"},
        {poked(good, 138, u32(200)), 2, "offset of the first sample (offset 138) is 200"},
        {poked(good, 138, u32(0xFFFFFFFF)), 2, "is 4294967295"},
        {poked(good, 184, u32(0xFFFFFFF0)), 2, "zone ORDER of 0 bytes"},
        {poked(good, 200, u32(0xFFFFFFF0)), 2, "zone LABCOD (offset 4294967280) is not between"},
        {poked(good, 200, u32(0)), 2, "zone LABCOD (offset 0) is not between"},
        {poked(good, order, u16(0xFFFF)), 2, "is 65535, whose record leaves the file"},
        {poked(good, labels + 18, u32(0xFFFFFFFF)), 2, "one below the minimum"},
        {good.substr(0, MicromedFile::dataOffset() + 3), 2, "no samples"},
    });
    // The front door leads here, so that the user gets the sentence; titles do not count.
    const std::string anonymous = poked(good, 0, std::string(32, 'x'));
    for (const auto& [bytes, sentence] :
         {std::pair(poked(good, 175, u8(0)), "a System 1 recording"),
          {poked(anonymous, 175, u8(3)), "an early System 98 recording"},
          {poked(good, 0, "GALILEO EEG TRACE FILE"), "Galileo trace file"}}) {
        std::string error;
        EXPECT_FALSE(openReader(dir.write("old.trc", bytes).c_str(), 0, &error));
        EXPECT_THAT(error, HasSubstr(sentence));
    }
    ASSERT_TRUE(opens(anonymous));
    EXPECT_TRUE(MicromedReader::isFileType(dir.file("EEG_1.TRC").c_str()));
    ASSERT_TRUE(opens(poked(good, 204, u32(0)))) << "nor does the length of LABCOD";
    EXPECT_STREQ(reader.grid1(1), "b");
}

} // namespace
} // namespace kvsig::test
