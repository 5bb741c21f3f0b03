#include "kvsig/readers/MicromedReader.h"

#include "kvsig/kernel/ClientEvent.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/MicromedFile.h"
#include "support/Opened.h"

#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig {
namespace {

using test::Bytes;
using test::MicromedFile;
using test::valuesOf;
using testing::HasSubstr;

struct Micromed : testing::Test {
    bool opens(const std::string& bytes) {
        return reader.open(dir.write("EEG_1.TRC", bytes).c_str());
    }
    bool opens(const MicromedFile& file) { return opens(file.bytes()); }
    std::string finding(std::size_t index) {
        return index < reader.openFindings().size() ? reader.openFindings()[index].text : "none";
    }
    std::vector<std::string> events() {
        std::deque<ClientEvent> read;
        reader.readEvents(read);
        std::vector<std::string> texts;
        for (const ClientEvent& event : read)
            texts.push_back(std::to_string(event.sample) + "+" +
                            std::to_string(std::lround(event.duration * 1000)) + " " +
                            event.stateText);
        return texts;
    }

    static constexpr double start = 23 * 3600 + 5 * 60 + 7;
    test::TempDir dir;
    MicromedReader reader;
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

TEST_F(Micromed, SamplesHaveOneTwoOrFourBytes) {
    const struct {
        int bytes;
        MicromedFile::Channel facts;
        std::size_t findings;
    } cases[] = {
        {1, {.positive = "a", .high = 255, .ground = 128}, 0},
        {2, {.positive = "a"}, 0},
        {4, {.positive = "a", .high = 65535}, 1},                             // unsigned
        {4, {.positive = "a", .low = -40000, .high = 40000, .ground = 0}, 1}, // signed
    };
    for (const auto& c : cases) {
        MicromedFile file;
        ASSERT_TRUE(opens(file.channel(c.facts).sampleBytes(c.bytes).frames(50)));
        for (const long i : {0L, 1L, 48L, 49L})
            EXPECT_NEAR(valuesOf(reader, 0, i, i)[0],
                        static_cast<double>(file.stored(0, i) - c.facts.ground) * 6400 /
                            (c.facts.high - c.facts.low + 1),
                        1e-3);
        EXPECT_EQ(reader.openFindings().size(), c.findings) << c.bytes;
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
    ASSERT_TRUE(opens(MicromedFile(file).piece(500, 0).piece(2000, 300)));
    EXPECT_EQ(reader.sampleTimeCount(), 1) << "a piece behind the end";
    for (const auto& [first, second] : {std::pair(0, 0), {100, 50}, {7, 100}}) {
        ASSERT_TRUE(opens(MicromedFile(file)
                              .piece(0, static_cast<std::uint32_t>(first))
                              .piece(900, static_cast<std::uint32_t>(second))));
        EXPECT_EQ(reader.getClockTime(2.5), start + 2.5);
        EXPECT_EQ(reader.openFindings().size(), first + second > 0 ? 1U : 0U);
    }
}

TEST_F(Micromed, EventsOfAllZonesAndOfTheFileBesideIt) {
    MicromedFile file;
    file.channel({"a"}).rate(100).frames(300);
    file.note(0, "begin").note(50, "eyes closed").note(900, "behind").note(0, "").note(60, "never");
    file.flag(10, 35).flag(0, 0).flag(40, 20).event('A', 3, 120, 170).event('B', 9, 0, 7);
    file.trigger(0, 0).trigger(77, 4096).trigger(300, 5).trigger(299, 6);
    const std::vector<std::string> own = {"0+0 begin",         "0+70 EVENT B 9",   "10+250 Flag",
                                          "40+0 Flag",         "50+0 eyes closed", "77+0 4096",
                                          "120+500 EVENT A 3", "299+0 6"};
    ASSERT_TRUE(opens(file));
    EXPECT_EQ(events(), own);
    dir.write("eeg_1.evt", "<EventFile><Events><Event><Begin>2026-07-04T23:05:09.5</Begin>"
                           "<End>2026-07-04T23:05:10.00+02:00</End><Text>a &amp; b</Text>"
                           "<ExtraText>left</ExtraText></Event>"
                           "<Event><Begin>soon</Begin><Text>no time</Text></Event>"
                           "<Event><Begin>2026-07-05T23:05:09</Begin><Text>late</Text></Event>"
                           "</Events></EventFile>");
    ASSERT_TRUE(opens(file));
    std::vector<std::string> all = own;
    all.insert(all.end() - 1, "250+500 a & b left");
    EXPECT_EQ(events(), all);
    for (const char* damaged : {"", "<EventFile><Events>", "<a/>", "\xFF\xFE"}) {
        dir.write("eeg_1.evt", damaged);
        ASSERT_TRUE(opens(file));
        EXPECT_EQ(events(), own) << damaged;
    }
    // A zone that leaves the file is none.
    std::string cut = file.bytes();
    cut.replace(176 + 14 * 16 + 8, 4, std::string("\xFF\xFF\xFF\xFF", 4));
    dir.write("eeg_1.evt", "<a/>");
    ASSERT_TRUE(opens(cut));
    EXPECT_EQ(events().size(), own.size() - 2);
}

TEST_F(Micromed, OtherVariantsAndLyingHeadersAreRefused) {
    const std::string good = MicromedFile().channel({"a"}).channel({"b"}).bytes();
    const auto poked = [&](std::size_t offset, Bytes bytes) {
        return std::string(good).replace(offset, bytes.size(), bytes.str());
    };
    const auto byte = [](int value) { return Bytes().add(static_cast<std::uint8_t>(value)); };
    const auto word = [](int value) { return Bytes().add(static_cast<std::uint16_t>(value)); };
    const auto wide = [](std::uint32_t value) { return Bytes().add(value); };
    const std::size_t order = MicromedFile::zoneStart("ORDER");
    const std::size_t labels = MicromedFile::zoneStart("LABCOD");
    const struct {
        std::string bytes;
        int error;
        const char* sentence;
    } cases[] = {
        {poked(175, byte(0)), 3, "header type (offset 175) is 0: a System 1 recording"},
        {poked(175, byte(2)), 3, "a System 2 recording"},
        {poked(175, byte(3)), 3, "an early System 98 recording"},
        {poked(175, byte(9)), 3, "header type (offset 175) is 9"},
        {poked(0, Bytes().add("GALILEO EEG TRACE FILE")), 3, "Galileo trace file"},
        {poked(150, word(1)), 3, "compressed recordings"},
        {poked(144, word(6)), 3, "2 channels of 2 bytes take 4: a variant"},
        {poked(labels + 44, word(2)), 3, "channels of several rates"},
        {poked(176, Bytes().add("ORDEN")), 2, "are not ORDER and LABCOD"},
        {poked(142, word(0)), 2, "number of channels (offset 142) is 0"},
        {poked(148, word(3)), 2, "bytes of a sample (offset 148) is 3"},
        {poked(146, word(0)), 2, "basic sampling rate (offset 146) is 0"},
        {poked(138, wide(200)), 2, "offset of the first sample (offset 138) is 200"},
        {poked(138, wide(0xFFFFFFFF)), 2, "is 4294967295"},
        {poked(184, wide(0xFFFFFFF0)), 2, "zone ORDER of 0 bytes"},
        {poked(200, wide(0xFFFFFFF0)), 2, "zone LABCOD leaves the file"},
        {poked(order, word(0xFFFF)), 2, "is 65535, whose record leaves the file"},
        {poked(labels + 18, wide(0xFFFFFFFF)), 2, "one below the minimum"},
        {good.substr(0, MicromedFile::dataOffset() + 3), 2, "no samples"},
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(opens(c.bytes)) << c.sentence;
        EXPECT_EQ(reader.getLastError(), c.error) << c.sentence;
        EXPECT_THAT(reader.lastErrorText(), HasSubstr(c.sentence));
    }
    // The front door leads here, so that the user gets the sentence.
    for (const std::size_t i : {0U, 4U}) {
        std::string error;
        EXPECT_FALSE(openReader(dir.write("old.trc", cases[i].bytes).c_str(), 0, &error));
        EXPECT_THAT(error, HasSubstr(cases[i].sentence));
    }
    ASSERT_TRUE(opens(poked(0, Bytes().put(0, "anonymous", 32)))) << "its title does not count";
    EXPECT_TRUE(MicromedReader::isFileType(dir.file("EEG_1.TRC").c_str()));
}

} // namespace
} // namespace kvsig
