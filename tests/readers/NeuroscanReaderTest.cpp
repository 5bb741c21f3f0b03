#include "kvsig/readers/NeuroscanReader.h"

#include "kvsig/kernel/ClientEvent.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/NeuroscanFile.h"
#include "support/Opened.h"

#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig {
namespace {

using test::Bytes;
using test::NeuroscanFile;
using test::rawOf;
using test::valuesOf;
using testing::HasSubstr;

struct Neuroscan : testing::Test {
    bool opens(const std::string& bytes) { return reader.open(dir.write("a.cnt", bytes).c_str()); }
    bool opens(const NeuroscanFile& file) { return opens(file.bytes()); }
    std::string findings() {
        std::string texts;
        for (const OpenFinding& finding : reader.openFindings())
            texts += finding.text + "\n";
        return texts;
    }
    std::vector<std::string> events() {
        std::deque<ClientEvent> read;
        reader.readEvents(read);
        std::vector<std::string> texts;
        for (const ClientEvent& event : read)
            texts.push_back(std::to_string(event.sample) + " " + event.stateText);
        return texts;
    }
    void expectSamples(const NeuroscanFile& file, long count) {
        ASSERT_EQ(reader.sampleCount(), count);
        for (int c = 0; c < reader.channelCount(); ++c) {
            const auto raw = rawOf(reader, c, 0, count - 1);
            for (long i = 0; i < count; ++i)
                ASSERT_EQ(raw[static_cast<std::size_t>(i)], file.value(c, i)) << c << " " << i;
        }
    }

    test::TempDir dir;
    NeuroscanReader reader;
};

TEST_F(Neuroscan, TheWidthOfSamplesIsTakenFromTheTrailerOrTheCount) {
    const auto made = [](int bytes) {
        return NeuroscanFile().channels(3).frames(70).sampleBytes(bytes);
    };
    for (const int bytes : {2, 4})
        for (const bool trailer : {false, true}) {
            NeuroscanFile file = made(bytes);
            ASSERT_TRUE(opens(trailer ? file.trailer(bytes == 4).count(0) : file));
            expectSamples(file, 70);
            EXPECT_EQ(findings(), "");
        }
    // They disagree: the trailer counts when it is marked as one.
    NeuroscanFile file = made(4).count(140).trailer(1);
    ASSERT_TRUE(opens(file));
    expectSamples(file, 70);
    EXPECT_THAT(findings(), HasSubstr("taken for 32"));
    std::string unmarked = made(2).trailer(1).bytes();
    unmarked[unmarked.size() - 60] = 'X';
    ASSERT_TRUE(opens(unmarked));
    expectSamples(made(2), 70);
    EXPECT_THAT(findings(), HasSubstr("taken for 16"));
    ASSERT_TRUE(opens(made(2).count(71)));
    expectSamples(made(2), 70);
    EXPECT_THAT(findings(), HasSubstr("nothing tells whether"));
    ASSERT_TRUE(opens(made(2).count(60).trailer(0)));
    expectSamples(made(2), 60);
    EXPECT_THAT(findings(), HasSubstr("(offset 864) is 60"));
}

TEST_F(Neuroscan, BlocksAreTakenForWhatTheirSignalSays) {
    for (const int block : {8, 100'000}) { // in groups, and one run per channel
        const NeuroscanFile file =
            NeuroscanFile().channels(5).frames(210'003).blocks(block).smoothSignal();
        ASSERT_TRUE(opens(file)) << reader.lastErrorText();
        expectSamples(file, 210'003);
        EXPECT_THAT(findings(), HasSubstr("read as blocks"));
    }
    const NeuroscanFile framed =
        NeuroscanFile().channels(2).frames(500).channelOffset(16).smoothSignal();
    ASSERT_TRUE(opens(framed));
    expectSamples(framed, 500);
    EXPECT_THAT(findings(), HasSubstr("read as frames"));
    for (const int odd : {1, 3, -8, 0x7FFFFFFF}) {
        const NeuroscanFile file = NeuroscanFile().channels(2).frames(50).channelOffset(odd);
        ASSERT_TRUE(opens(file)) << odd;
        expectSamples(file, 50);
    }
}

TEST_F(Neuroscan, ValuesAreMicrovoltsAboveTheBaseline) {
    NeuroscanFile file;
    file.channel({"F8", 0, 17.1875F, 1.0F}).channel({"VEOGVEOGVEOG", -200, 114.583F, 2.0F});
    ASSERT_TRUE(opens(file.frames(30)));
    EXPECT_EQ(reader.bytesPerSample(), 4);
    EXPECT_STREQ(reader.channelName(0), "F8-Ref");
    EXPECT_STREQ(reader.grid1(1), "VEOGVEOGVE");
    EXPECT_STREQ(reader.refGrid(), "Ref");
    for (const long i : {0L, 7L, 29L}) {
        EXPECT_FLOAT_EQ(valuesOf(reader, 0, i, i)[0],
                        static_cast<float>(file.value(0, i) * 17.1875 / 204.8));
        EXPECT_FLOAT_EQ(
            valuesOf(reader, 1, i, i)[0],
            static_cast<float>((file.value(1, i) + 200) * double{114.583F} * 2 / 204.8));
    }
    EXPECT_EQ(reader.patientRec()->name(), "Jane Doe");
    EXPECT_STREQ(reader.patientRec()->id, "P-0815");
    EXPECT_STREQ(reader.patientRec()->hand, "R");
    EXPECT_STREQ(reader.patientRec()->medications, "none");
}

TEST_F(Neuroscan, EventsOfAllTables) {
    for (const int type : {1, 2, 3}) {
        NeuroscanFile file;
        file.channels(3).frames(100).tableType(type);
        file.event(0, 0, 0, 0xC0).event(9, 0, 0, 0xD0).event(12, 7, 0, 0).event(13, 109, 2, 5);
        file.event(40, 0, 0, 0xE0).event(41, 0, 0, 0xB0).event(42, 0, 0, 0).event(99, 300, 0, 0xA0);
        file.event(100, 0, 0, 0xE0).event(101, 8, 0, 0);
        ASSERT_TRUE(opens(file));
        EXPECT_EQ(events(),
                  (std::vector<std::string>{"0 reject", "9 accept", "12 7", "13 109 F2 keypad 5",
                                            "40 start/stop", "41 DC reset", "99 300 DC reset",
                                            "100 start/stop"}));
        EXPECT_THAT(
            findings(),
            HasSubstr("1 marks inside the recording say start/stop, the first at sample 40"));
        const std::string all = file.bytes();
        const std::size_t table = file.tableOffset();
        for (std::size_t length = table; length < all.size(); length += 3) {
            ASSERT_TRUE(opens(all.substr(0, length)));
            expectSamples(file, 100);
            EXPECT_LE(events().size(), 8U);
        }
        ASSERT_TRUE(opens(std::string(all).replace(table + 1, 4, "\xFF\xFF\xFF\xFF")));
        EXPECT_EQ(events().size(), 8U);
        EXPECT_THAT(findings(), HasSubstr("bytes of the event table"));
        ASSERT_TRUE(opens(std::string(all).replace(table, 1, "\4")));
        EXPECT_TRUE(events().empty());
        EXPECT_THAT(findings(), HasSubstr("type of the event table"));
    }
}

TEST_F(Neuroscan, DatesAreReadAsFarAsTheyTell) {
    const struct {
        const char* text;
        const char* date;
        const char* finding;
    } cases[] = {
        {"05/23/04", "2004.05.23", ""},
        {"23/05/98", "1998.05.23", ""},
        {"05/06/2004", "2004.05.06", "taken for month/day/year"},
        {"05/10/200", "05/10/200", "is not whole"},
        {"yesterday", "yesterday", "is not whole"},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(opens(NeuroscanFile().channels(1).date(c.text)));
        EXPECT_STREQ(reader.patientRec()->testDate, c.date);
        EXPECT_STREQ(reader.patientRec()->testTime, "23:05:07");
        EXPECT_EQ(reader.getClockTime(0), 23 * 3600 + 5 * 60 + 7);
        EXPECT_THAT(findings(), HasSubstr(c.finding));
        EXPECT_EQ(reader.openFindings().size(), *c.finding ? 1U : 0U);
    }
}

TEST_F(Neuroscan, OtherVariantsAndLyingHeadersAreRefused) {
    const NeuroscanFile file = NeuroscanFile().channels(2).frames(20);
    const std::string good = file.bytes();
    const auto poked = [&](std::size_t offset, Bytes bytes) {
        return std::string(good).replace(offset, bytes.size(), bytes.str());
    };
    const auto word = [](int value) { return Bytes().add(static_cast<std::uint16_t>(value)); };
    const struct {
        std::string bytes;
        int error;
        const char* sentence;
    } cases[] = {
        {"RIFF____CNT_", 3, "a RIFF container"},
        {"RF64" + std::string(2000, '\0'), 3, "a RIFF container"},
        {poked(8, Bytes().add("2")), 3, "not \"Version 3.0\""},
        {poked(885, Bytes().add(std::uint8_t{2})), 3, "DC amplifier"},
        {poked(886, Bytes().add(std::uint32_t{0})), 3, "averages and epochs"},
        {good.substr(0, 899), 2, "ends after 899 bytes"},
        {poked(370, word(0)), 2, "number of channels (offset 370) is 0"},
        {poked(370, word(0xFFFF)), 2, "is 65535, whose records leave the file"},
        {poked(376, word(0)), 2, "sampling rate (offset 376) is 0"},
        {good.substr(0, file.dataOffset() + 3), 2, "no samples"},
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(opens(c.bytes)) << c.sentence;
        EXPECT_EQ(reader.getLastError(), c.error) << c.sentence;
        EXPECT_THAT(reader.lastErrorText(), HasSubstr(c.sentence));
        std::string error;
        EXPECT_FALSE(openReader(dir.file("a.cnt").c_str(), 0, &error));
    }
    EXPECT_FALSE(reader.open(dir.write("a.avg", good).c_str()));
    EXPECT_EQ(reader.getLastError(), 3);
    // What leads behind the file's end was cut off: samples to the end, no events.
    ASSERT_TRUE(opens(good.substr(0, good.size() - 20)));
    expectSamples(file, 17);
    EXPECT_THAT(findings(), HasSubstr("is not inside the file"));
}

} // namespace
} // namespace kvsig
