#include "kvsig/readers/NeuroscanReader.h"

#include "kvsig/readers/FlatRecording.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/NeuroscanFile.h"
#include "support/Opened.h"
#include "support/ReaderFixture.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig::test {
namespace {

using testing::HasSubstr;

struct Neuroscan : ReaderFixture<NeuroscanReader> {
    Neuroscan() : ReaderFixture("a.cnt") {}

    void expectSamples(const NeuroscanFile& file, long count) {
        ASSERT_EQ(reader.sampleCount(), count);
        holds([&file](int channel, long index) { return file.value(channel, index); });
    }
};

TEST_F(Neuroscan, TheWidthOfSamplesIsTakenFromTheTrailerOrTheCount) {
    const auto made = [](int bytes) {
        return NeuroscanFile().channels(3).frames(70).sampleBytes(bytes);
    };
    for (const int bytes : {2, 4})
        reads({{made(bytes).bytes(), 70, ""},
               {made(bytes).trailer(bytes == 4).count(0).bytes(), 70, ""}});
    // They disagree: the trailer counts when it is marked as one.
    const std::string cut = made(2).count(0).bytes().substr(0, made(2).tableOffset());
    const auto markLike = cut.find('\1', made(2).dataOffset() + 60);
    std::string unmarked = made(2).trailer(1).bytes();
    unmarked[unmarked.size() - 60] = 'X';
    reads({{made(4).count(140).trailer(1).bytes(), 70, "taken for 32"},
           {unmarked, 70, "taken for 16"},
           {made(2).count(71).bytes(), 70, "nothing tells whether"},
           {made(2).count(60).trailer(0).bytes(), 60, "(offset 864) is 60"},
           {made(2).count(5000).trailer(0).bytes(), 70, "(offset 864) is 5000, 70 are there"},
           {poked(made(2).trailer(0).bytes(), 886, u32(made(2).tableOffset() - 2)), 69,
            "the 4 bytes before its event table are no whole sample of 3 channels"},
           // No event table that the pointer could stand behind: it leads into the samples.
           {poked(poked(cut, 886, u32(100)), 12, u32(static_cast<std::uint32_t>(markLike - 52))),
            70, "nothing tells whether"},
           // Of a recording that was cut the pointer leads into the samples.
           {poked(poked(cut, 886, u32(1 << 20)), 12, u32(1200)), 70, "nothing tells whether"}});
}

TEST_F(Neuroscan, BlocksAreTakenForWhatTheirSignalSays) {
    for (const int block : {8, 110'000}) { // in groups, and one run per channel
        const NeuroscanFile file =
            NeuroscanFile().channels(5).frames(230'003).blocks(block).smoothSignal();
        ASSERT_TRUE(opens(file)) << reader.lastErrorText();
        expectSamples(file, 230'003);
        EXPECT_THAT(findings(), tells("read as blocks"));
    }
    // A last block that may be shorter is shown where number of samples and event table agree.
    NeuroscanFile file = NeuroscanFile().channels(3).blocks(1000).smoothSignal();
    const std::string three = file.frames(3000).bytes(), most = file.frames(2500).bytes();
    const std::size_t table = file.tableOffset();
    const struct {
        std::string bytes;
        long samples;
        bool isSure = true;
    } cases[] = {{most, 2500},
                 {poked(most, 864, u32(0)), 2500},
                 // Place and number agree, whatever is left of the table.
                 {poked(most, table, "\4"), 2500},
                 {most.substr(0, table), 2500},
                 {most.substr(0, table + 5), 2500},
                 // A number that contradicts or tells nothing, and places of no table.
                 {poked(most, 864, u32(3000)), 2000, false},
                 {poked(poked(most, 864, u32(0)), table, "\4"), 2000, false},
                 {poked(poked(most, 864, u32(0)), table + 1, u32(8)), 2000, false},
                 {poked(most, 886, u32(table - 600)), 2000, false},
                 {poked(poked(most, 864, u32(0)), 886, u32(table - 600)), 2000, false},
                 {poked(poked(most, 886, u32(table + 2)), table + 2, u8(1)) + "xx", 2000, false},
                 {poked(three, 864, u32(2000)), 2000},
                 {poked(most, 886, u32(~0U)), 2000, false},
                 {poked(three, 864, u32(2500)), 2000, false},
                 {three.substr(0, file.dataOffset() + 15000), 2000, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        ASSERT_TRUE(opens(c.bytes));
        expectSamples(file, c.samples);
        EXPECT_NE(testing::Matches(tells("): their block of 1000"))(findings()), c.isSure);
    }
    const NeuroscanFile framed =
        NeuroscanFile().channels(2).frames(500).channelOffset(16).smoothSignal();
    ASSERT_TRUE(opens(framed));
    expectSamples(framed, 500);
    EXPECT_THAT(findings(), tells("read as frames"));
    for (const int odd : {1, 3, -8, 0x7FFFFFFF})
        reads({{NeuroscanFile().channels(2).frames(50).channelOffset(odd).bytes(), 50,
                odd > 1 ? "no whole number of samples of 2 bytes: read as frames" : ""}});
}

// Of 2048 channels, blocks of 1.2 MB: a run of each channel would be 4.5 million pieces.
TEST_F(Neuroscan, BlocksOfManyChannelsTakeNoMemoryOfTheirOwn) {
    struct Described : NeuroscanReader {
        using NeuroscanReader::recording;
    };
    const NeuroscanFile file =
        NeuroscanFile().channels(2048).frames(300).blocks(300).smoothSignal();
    const std::string path =
        dir.write("a.cnt", poked(poked(file.bytes().substr(0, file.tableOffset()), 886, u32(~0U)),
                                 864, u32(0)));
    const auto opensOf = [&](std::size_t blocks, std::size_t tracks) {
        std::filesystem::resize_file(path, file.dataOffset() + blocks * 2048 * 300 * 2);
        Described described;
        ASSERT_TRUE(described.open(path.c_str())) << described.lastErrorText();
        EXPECT_EQ(described.sampleCount(), static_cast<long>(blocks) * 300);
        EXPECT_EQ(described.recording().tracks.size(), tracks);
        for (const int channel : {0, 5, 14}) // whose values fit 16 bits
            EXPECT_EQ(rawOf(described, channel, 299, 300),
                      (std::vector<std::int32_t>{file.value(channel, 299), 0}));
    };
    opensOf(3, 2048);
    opensOf(2200, 1);
}

TEST_F(Neuroscan, ARecordingOfMoreThanFourGigabytesMayBeCutToLess) {
    for (const int bytes : {2, 4}) { // 2^32 bytes and 20 frames of two channels
        const NeuroscanFile file = NeuroscanFile().channels(2).frames(100).sampleBytes(bytes);
        const std::uint64_t frame = 2U * static_cast<unsigned>(bytes), over = 20 * frame;
        const std::string cut =
            poked(poked(poked(file.bytes().substr(0, file.tableOffset()), 16, u32(1)), 864,
                        u32((1ULL << 32) / frame + 20)),
                  886, u32(file.dataOffset() + over));
        reads({{cut, 100, "(offset 4294968", 0}});
        EXPECT_THAT(findings(), tells("samples are read to its end, without events"));
        EXPECT_EQ(findings().size(), 2U) << "and the number of samples";
        // The number does not bear out that the field is the upper half.
        ASSERT_TRUE(opens(poked(cut, 864, u32(20))));
        EXPECT_EQ(reader.sampleCount(), 20);
    }
}

TEST_F(Neuroscan, BeyondFourGigabytesTheNumberOfSamplesFindsTheEventTable) {
    const NeuroscanFile file = NeuroscanFile().channels(2).frames(2).sampleBytes(4);
    const long frames = (1L << 29) + 20; // 2^32 bytes and 160
    const std::string head = file.bytes().substr(0, file.tableOffset());
    const auto open = [&](std::uint32_t upper, long count, std::uint32_t trailer) {
        const std::string path = dir.write(
            "a.cnt",
            poked(poked(poked(poked(head, 886, u32(file.dataOffset() + 160)), 16, u32(upper)), 864,
                        u32(static_cast<std::uint64_t>(count))),
                  12, u32(trailer)));
        std::filesystem::resize_file(path, file.dataOffset() + 8ULL * frames + 100);
        return reader.open(path.c_str());
    };
    for (const std::uint32_t upper : {1U, 0U, 0x12345678U}) {
        ASSERT_TRUE(open(upper, frames, 5000)) << reader.lastErrorText();
        EXPECT_EQ(reader.sampleCount(), frames);
        EXPECT_EQ(rawOf(reader, 1, 1, 1)[0], file.value(1, 1));
        EXPECT_THAT(findings(), tells("(offset 12) is 5000: no trailer"));
    }
    ASSERT_TRUE(open(1, 0, 5000)) << "a trailer of 16-bit samples inside these does not count";
    EXPECT_THAT(findings(), tells("nothing tells whether"));
    ASSERT_TRUE(open(0, 0, 5000));
    EXPECT_THAT(findings(), tells("nothing tells whether"));
    EXPECT_THAT(findings(), tells("more than 4 GiB follow its event table"));
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
        EXPECT_THAT(findings(),
                    tells("1 marks inside the recording say start/stop, the first at sample 40"));
        const std::string all = file.bytes();
        const std::size_t table = file.tableOffset();
        ASSERT_TRUE(opens(all.substr(0, table + 9 + (type == 1 ? 8U : 19U))));
        EXPECT_EQ(events(), std::vector<std::string>{"0 reject"});
        reads({{all.substr(0, table), 100, "table (offset 1725) is cut: 0 of its 9 bytes are"},
               {all.substr(0, table + 8), 100, "is cut: 8 of its 9 bytes are in the file"},
               {poked(all, table + 1, u32(~0U)), 100, "bytes of the event table"}});
        EXPECT_EQ(events().size(), 8U);
        const unsigned record = type == 1 ? 8 : 19;
        ASSERT_TRUE(opens(poked(all, table + 1, u32(4 * record + 5))));
        EXPECT_THAT(findings(), tells("no whole number of records of "));
        EXPECT_THAT(findings(), tells(": the last 5 are left out"));
        EXPECT_EQ(events().size(), 4U);
        reads({{poked(all, table, "\4"), 100, "type of the event table"}});
        EXPECT_TRUE(events().empty());
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
        ASSERT_EQ(findings().size(), *c.finding ? 1U : 0U);
        if (*c.finding) {
            EXPECT_THAT(findings(), tells(c.finding));
        }
    }
}

TEST_F(Neuroscan, OtherVariantsAndLyingHeadersAreRefused) {
    const NeuroscanFile file = NeuroscanFile().channels(2).frames(20);
    const std::string good = file.bytes();
    refuses({
        {"RIFF____CNT_", 3, "a RIFF container"},
        {"RF64" + std::string(2000, '\0'), 3, "a RIFF container"},
        {poked(good, 8, "2"), 3, "version (offset 0) is \"Version 2.0\", not \"Version 3.0\""},
        {poked(good, 885, u8(2)), 3, "DC amplifier"},
        {poked(good, 886, u32(0)), 3, "averages and epochs"},
        {poked(poked(good, 885, u8(0)), 886, u32(~0U)), 3, "averages and epochs"},
        {good.substr(0, 899), 2, "ends after 899 bytes"},
        {poked(good, 370, u16(0)), 2, "number of channels (offset 370) is 0"},
        {poked(good, 370, u16(0xFFFF)), 2, "is 65535, whose records leave the file"},
        {poked(good, 376, u16(0)), 2, "sampling rate (offset 376) is 0"},
        {good.substr(0, file.dataOffset() + 3), 2, "no samples"},
    });
    std::string error;
    EXPECT_FALSE(openReader(dir.write("a.cnt", "RIFF____CNT_").c_str(), 0, &error));
    EXPECT_THAT(error, HasSubstr("a RIFF container"));
    EXPECT_FALSE(reader.open(dir.write("a.avg", good).c_str()));
    EXPECT_EQ(reader.getLastError(), 3);
    // What leads behind the file's end was cut off: samples to the end, no events.
    reads({{good.substr(0, good.size() - 20), 17, "and the end of the file of 1119 bytes"},
           {poked(good, 886, u32(100)), 20, "(offset 100) is not between the first sample (off"}});
}

} // namespace
} // namespace kvsig::test
