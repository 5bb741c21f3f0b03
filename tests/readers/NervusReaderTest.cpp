#include "kvsig/readers/NervusReader.h"

#include "kvsig/registry/FrontDoor.h"
#include "support/LogCapture.h"
#include "support/NervusFile.h"
#include "support/Opened.h"
#include "support/ReaderFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Nervus : ReaderFixture<NervusReader> {
    // The second channel has its own count in each segment.
    Nervus() : ReaderFixture("Rec.e") {
        ramp = [](int channel, long i) {
            const long own = i < 1250 ? i * 32 / 100 : 400 + (i - 1250) * 32 / 100;
            return rampCount(channel, channel == 1 ? own : i);
        };
    }
    using ReaderFixture::opens;
    bool opens(const NervusFile& file) { return opens(file.make().bytes); }
    // 100, 32 and 100 Hz; 12.5 s and 8 s, a night between them.
    static NervusFile sample() {
        return NervusFile()
            .channel({.label = "Fp1", .resolution = 0.25})
            .channel({"Resp", "", 32, -1.5})
            .channel({"Cz ", "A1", 100, 1e-4})
            .segment(first, 12.5)
            .segment(second, 8);
    }

    static inline const double first = oleDays(2019, 12, 31, 86390.5);
    static inline const double second = oleDays(2020, 1, 1, 30000);
};

TEST_F(Nervus, SegmentsFollowEachOtherAtEveryChannelsRate) {
    reads({{sample().make().bytes, 2050, "", 2}});
    EXPECT_EQ(reader.samplingRate(), 100.0);
    EXPECT_EQ(reader.getClockTime(0.0), 86390.5);
    EXPECT_EQ(reader.getClockTime(12.5), 86400 + 30000.0);
    EXPECT_STREQ(reader.patientRec()->testDate, "2019.12.31");
    EXPECT_STREQ(reader.patientRec()->testTime, "23:59:50");
    EXPECT_STREQ(reader.channelName(0), "Fp1-Ref");
    EXPECT_STREQ(reader.channelName(1), "Resp");
    EXPECT_STREQ(reader.channelName(2), "Cz-A1");
    EXPECT_EQ(reader.storedSamplingRate(1), 32.0);
    for (long i = 0; i < 2050; i += 49) {
        EXPECT_FLOAT_EQ(valuesOf(reader, 1, i, i)[0], static_cast<float>(ramp(1, i) * -1.5));
        EXPECT_FLOAT_EQ(valuesOf(reader, 2, i, i)[0], static_cast<float>(ramp(2, i) * 1e-4));
    }
    EXPECT_EQ(reader.channelType(1), 1);
    EXPECT_EQ(openReader(dir.file("Rec.e").c_str())->fileType(), 52);
}

TEST_F(Nervus, TheIndexIsReadAsFarAsItIsSound) {
    const NervusFile::Made made = sample().entriesPerBlock(5).make();
    const std::size_t block2 = made.places.at("index") + 16 + 24 * 5; // block of the index
    const std::size_t next = block2 - 8;
    refuses({{poked(made.bytes, next, u64(made.places.at("index"))), 2, "the index goes round"},
             {poked(made.bytes, next, u64(block2 - 40)), 2, "no channel is described"},
             {poked(made.bytes, 24, u32(~0U)), 2, "section of segments has 0 bytes"},
             {poked(made.bytes, 172208, u32(0)), 2, "index entries (offset 172208) is 0"}});
    // A later block is lost: what was listed before it is shown.
    const std::size_t fifth = made.places.at("index") + 4 * (16 + 24 * 5);
    for (const auto& [offset, bytes, sentence] :
         {std::tuple(fifth - 8, u64(1ULL << 63), "leaves the file"),
          std::tuple(fifth - 8, u64(0), "may still have been written"),
          std::tuple(fifth, u64(~0ULL), "says 18446744073709551615 entries"),
          std::tuple(fifth, u64(0), "may still have been written"), // and leads nowhere
          std::tuple(std::size_t{172208}, u32(18), "of which only 3 count")}) {
        ASSERT_TRUE(opens(poked(made.bytes, offset, bytes))) << reader.lastErrorText();
        EXPECT_THAT(findings(), tells(sentence));
        EXPECT_THAT(findings(), tells("of the announced 20.5 s"));
        EXPECT_GT(reader.sampleCount(), 99);
        EXPECT_LT(reader.sampleCount(), 400);
        holds(ramp);
    }
    // A block without entries leads on.
    const std::string longer = poked(made.bytes, fifth - 8, u64(made.bytes.size()));
    reads({{longer + u64(0) + u64(fifth), 2050, ""},
           {poked(made.bytes, 172208, u32(99999)), 2050, "may still have been written"}});
}

TEST_F(Nervus, PiecesThatLieShowNoWrongSample) {
    const NervusFile::Made made = sample().entriesPerBlock(999).make();
    // The entries of samples follow those of the other sections: two each, but one of the patient.
    const std::size_t entries = made.places.at("index") + 8;
    const auto entryOf = [&](std::size_t piece) {
        std::size_t at = entries;
        while (made.bytes.substr(at, 1)[0] < 106)
            at += 24;
        return at + 24 * piece;
    };
    // The third second of Fp1.
    reads({{poked(made.bytes, entryOf(6) + 8, u64(~0ULL)), 200, "section 0 is cut"}});
    EXPECT_THAT(findings(), tells("channel 1 has"));
    const struct {
        std::size_t offset;
        std::string bytes;
        const char* sentence;
    } cases[] = {
        {entryOf(6) + 20, u32(199), "which are no whole samples"},
        {entryOf(6) + 8, made.bytes.substr(entryOf(3) + 8, 8), "overlap"},
        {entryOf(6), u8(108), "of the announced"},
    };
    for (const auto& c : cases) {
        const bool opened = opens(poked(made.bytes, c.offset, c.bytes));
        EXPECT_THAT(opened ? findings().back() : std::string(reader.lastErrorText()),
                    HasSubstr(c.sentence));
    }
    std::string greedy = made.bytes; // every piece claims four gigabytes of the file's end
    for (std::size_t i = 0; i < 20; ++i)
        greedy = poked(greedy, entryOf(i) + 20, u32(~0U));
    EXPECT_FALSE(opens(greedy));
}

TEST_F(Nervus, ChannelsThatEndEarlyEndTheRecording) {
    const auto held = [](std::size_t channel, std::int64_t samples) {
        return sample().held(channel, samples).make().bytes;
    };
    reads({{held(1, 410), 1250 + 31, "to 12.81 s of the announced 20.5 s: channel 2", 2},
           {held(2, 777), 777, "to 7.77 s of the announced 20.5 s: channel 3", 1}});
    ASSERT_TRUE(opens(sample().held(2, 0)));
    EXPECT_EQ(reader.channelCount(), 2);
    EXPECT_THAT(findings(), ElementsAre(HasSubstr("channel 3 is left out: there are no samples")));
    const NervusFile::Made made = sample().make();
    ASSERT_TRUE(opens(poked(made.bytes, made.places.at("SegmentStream") + 16, f64(2.0))));
    EXPECT_THAT(findings(), tells("channel 1 holds 1050 samples more than"));
}

TEST_F(Nervus, PacketsOfChannelsMustAgree) {
    const NervusFile::Made made = sample().make();
    const std::size_t change = made.places.at("InfoChangeStream") + 60 + 3 - 12; // in two pieces
    const std::size_t packet = made.places.at(NervusFile::series) + 9;
    const NervusFile::Made two = sample().packet(50).make(); // of 760 + 3 * 552 bytes each
    const NervusFile::Made alike = sample().packet(100).make();
    const std::size_t entries = two.places.at("InfoChangeStream") + 60 + 3 - 12;
    refuses({
        {sample().packet(100).packet(50).make().bytes, 3,
         "packet 3 of its channels describes channel 1 in"},
        // The second is cut behind its first channel, whose rate is another one.
        {poked(two.bytes, entries + 80 + 40, u64(760 + 552)), 3, "packet 2 of its channels"},
        {poked(made.bytes, change + 32, u64(1ULL << 40)), 2, "1099511627776 is outside their"},
        {poked(made.bytes, change + 40, u64(760 + 551)), 2, "no channel is described"},
    });
    reads({{poked(made.bytes, change + 40, u64(760 + 552 * 3 - 1)), 2050, "says 3 channels and"}});
    EXPECT_EQ(reader.channelCount(), 2);
    // The first lacks its last channel, or holds no whole one: the second describes them.
    reads({{poked(alike.bytes, entries + 40, u64(760 + 552 * 3 - 1)), 2050, "and holds 2"}});
    EXPECT_EQ(reader.channelCount(), 3);
    reads({{sample().packet(100).packet(100).make().bytes, 2050, ""},
           {poked(made.bytes, packet + 752, u32(~0ULL)), 2050,
            "says 4294967295 channels and holds 3"},
           {sample().unlisted().make().bytes, 2050, "no change lists its channels"}});
    EXPECT_EQ(reader.channelCount(), 3);
    ASSERT_TRUE(opens(poked(two.bytes, entries + 40, u64(760 + 551))));
    EXPECT_EQ(reader.channelCount(), 3);
    EXPECT_EQ(reader.samplingRate(), 100.0);
    EXPECT_EQ(reader.storedSamplingRate(0), 50.0);
    EXPECT_THAT(findings(), tells("packet 1 of its channels says 3 channels and holds 0"));
}

TEST_F(Nervus, OddChannelsAreToldOrLeftOut) {
    const NervusFile::Made made = sample()
                                      .channel({})
                                      .channel({.resolution = std::nan("")})
                                      .channel({.label = "", .offset = 2.5})
                                      .make();
    // The fourth record's rate, behind the gap between the section's two pieces.
    const std::size_t rate = made.places.at(NervusFile::series) + 9 + 3 + 760 + 552 * 3 + 272;
    ASSERT_TRUE(opens(poked(made.bytes, rate, f64(HUGE_VAL))));
    EXPECT_EQ(reader.channelCount(), 4);
    EXPECT_THAT(findings(),
                ElementsAre(HasSubstr("channel 4 is left out: its sampling rate is inf"),
                            HasSubstr("channel 5 is left out: it has nan uV"),
                            HasSubstr("channel 6 has an offset of 2.5")));
    EXPECT_STREQ(reader.grid1(3), "Ch6");
    EXPECT_EQ(rawOf(reader, 3, 9, 9)[0], rampCount(5, 9));
}

TEST_F(Nervus, ThePatientIsRead) {
    NervusFile file = sample();
    file.value(23, 1.8).value(7, oleDays(1964, 8, 12, 0)).text(4, "Muster").text(9, "Street");
    file.text(2, "Erika").text(1, "P-4711").text(10, "Female").text(12, "").text(13, "Left");
    ASSERT_TRUE(opens(file));
    const PatientRec& patient = *reader.patientRec();
    EXPECT_EQ(displayName(patient), "Muster, Erika");
    EXPECT_STREQ(patient.id, "P-4711");
    EXPECT_STREQ(patient.sex, "Female");
    EXPECT_STREQ(patient.hand, "Left");
    EXPECT_STREQ(patient.birthDate, "1964.08.12");
    const NervusFile::Made made = file.make();
    const std::size_t place = made.places.at(NervusFile::patient);
    for (const std::size_t field : {std::size_t{24}, std::size_t{32}, std::size_t{80}}) {
        ASSERT_TRUE(opens(poked(made.bytes, place + field, u64(~0ULL))));
        EXPECT_THAT(findings(), ElementsAre(HasSubstr("left out")));
        EXPECT_STREQ(patient.last, "");
    }
}

TEST_F(Nervus, EventsStandAtTheirSamples) {
    const NervusFile file = sample()
                                .event(NervusFile::annotation, first, 1.5, 0.5, "eyes closed")
                                .event(NervusFile::seizure, first, 12.5, 8, "left")
                                .event(NervusFile::annotation, second, -3600, 0, "in the pause")
                                .event(NervusFile::patient, second, 7.99, -1, "", "own type")
                                .event(NervusFile::patient, second, 8, std::nan(""), "")
                                .event(NervusFile::annotation, second, 9, 0, "behind")
                                .event(NervusFile::annotation, first, -1, 0, "before")
                                .event(NervusFile::annotation, std::nan(""), 0, 0, "never");
    LogCapture log;
    ASSERT_TRUE(opens(file));
    EXPECT_THAT(events(), ElementsAre("150+500 eyes closed", "1250+8000 Seizure: left",
                                      "1250 in the pause", "2049 own type", "2050 Event"));
    EXPECT_THAT(log.take(logWarning),
                ElementsAre(HasSubstr("Rec.e: events outside the recording are left out (2)"),
                            HasSubstr("Rec.e: events without a date are left out (1)")));
    const NervusFile::Made made = file.make();
    for (const std::uint64_t length : {0ULL, 23ULL, 100ULL, 1ULL << 62, ~0ULL}) {
        ASSERT_TRUE(opens(poked(made.bytes, made.places.at("Events") + 16, u64(length))));
        EXPECT_THAT(events(), IsEmpty()) << length;
        EXPECT_EQ(log.take(logWarning).size(), 1U) << length;
    }
    const std::size_t next = made.places.at("Events") + 272 + 2 * 11; // event
    ASSERT_TRUE(opens(poked(made.bytes, next, "x")));                 // its mark
    EXPECT_EQ(events().size(), 1U);
    EXPECT_THAT(log.take(logWarning), ElementsAre(HasSubstr("is no event and is left out")));
    ASSERT_TRUE(opens(poked(made.bytes, next, std::string(made.places.at("Unused") - next, '\0'))));
    EXPECT_EQ(events().size(), 1U);
    EXPECT_THAT(log.take(logWarning), IsEmpty()) << "padding";
    ASSERT_TRUE(opens(poked(made.bytes, made.places.at("Events") + 128, u64(~0ULL))));
    EXPECT_THAT(events(), Contains("150+500 eyes closed")) << "what of the text is in the packet";
    // A seizure's text must be one: its packet of 280 bytes has room for 8 characters.
    for (const auto& [units, text] :
         {std::pair(8ULL, "Seizure: left"), {9ULL, "Seizure"}, {~0ULL, "Seizure"}}) {
        ASSERT_TRUE(opens(poked(made.bytes, next + 3 + 128, u64(units))));
        EXPECT_THAT(events(), Contains("1250+8000 " + std::string(text))) << units;
    }
    log.take(logWarning);
    ASSERT_TRUE(opens(poked(made.bytes, made.places.at("SegmentStream"), f64(0))));
    log.take(logWarning);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_THAT(log.take(logWarning),
                ElementsAre(HasSubstr("its first segment has no date: all its events (8) are")));
    ASSERT_TRUE(opens(sample().event(NervusFile::seizure, first, -1, 0, "")));
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_THAT(log.take(logWarning),
                ElementsAre(testing::EndsWith("all its events (1) lie outside the recording")));
}

TEST_F(Nervus, OtherVariantsAndLyingHeadersAreRefused) {
    const NervusFile::Made made = sample().make();
    const std::size_t segments = made.places.at("SegmentStream");
    refuses({
        {poked(made.bytes, 24, u32(0)), 3, "older Nervus generation"},
        {poked(made.bytes, 172, u32(0)), 2, "number of tags (offset 172) is 0"},
        {poked(made.bytes, 172, u32(~0ULL)), 2, "is 4294967295, 1 to 2048"},
        {poked(made.bytes, 172, u32(6)), 2, "of 3 channels none can be shown"},
        {poked(made.bytes, 176, std::string(168, 'x')), 3, "none of its 9 tags"},
        {poked(made.bytes, 176 + 84 * 6 + 80, u32(107)), 2, "tags 0 and 1 share section 107"},
        {poked(made.bytes, 176 + 84 * 7, "0"), 2, "two tags 0"},
        {made.bytes.substr(0, 170), 2, "ends after 170 bytes"},
        {made.bytes.substr(0, 172000), 2, "ends after 172000 bytes"},
        {poked(made.bytes, segments + 16, f64(-1)), 2, "segment 1 lasts -1 s"},
        {poked(made.bytes, segments + 16, f64(std::nan(""))), 2, "segment 1 lasts nan s"},
        {NervusFile().channel({}).segment(first, 0).make().bytes, 2, "none can be shown"},
        {NervusFile().channel({}).make().bytes, 2, "section of segments has 0 bytes"},
        {made.bytes.substr(0, made.places.at("data")), 2, "no samples"},
    });
    std::string error;
    EXPECT_FALSE(openReader(dir.write("old.e", poked(made.bytes, 24, u32(0))).c_str(), 0, &error));
    EXPECT_THAT(error, HasSubstr("older Nervus generation"));
    ASSERT_TRUE(opens(poked(made.bytes, segments + 16, f64(1e300))));
    EXPECT_EQ(reader.sampleCount(), 2050);
    ASSERT_TRUE(opens(poked(made.bytes, segments, f64(1e300))));
    EXPECT_EQ(reader.getClockTime(0.0), 0.0);
    EXPECT_THAT(findings().at(0), HasSubstr("2 of 2 segments have no date"));
}

} // namespace
} // namespace kvsig::test
