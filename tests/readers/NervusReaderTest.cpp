#include "kvsig/readers/NervusReader.h"

#include "kvsig/registry/FrontDoor.h"
#include "support/NervusFile.h"
#include "support/Opened.h"

#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig {
namespace {

using test::NervusFile;
using test::oleDays;
using test::rampCount;
using test::rawOf;
using test::valuesOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string number(std::uint64_t value, std::size_t bytes) {
    return test::Bytes().add(value).str().substr(0, bytes);
}

struct Nervus : testing::Test {
    bool opens(const NervusFile& file) { return opens(file.make().bytes); }
    bool opens(const std::string& bytes) { return reader.open(dir.write("Rec.e", bytes).c_str()); }
    std::vector<std::string> findings() {
        std::vector<std::string> texts;
        for (const OpenFinding& finding : reader.openFindings())
            texts.push_back(finding.text);
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
    test::TempDir dir;
    NervusReader reader;
};

TEST_F(Nervus, SegmentsFollowEachOtherAtEveryChannelsRate) {
    ASSERT_TRUE(opens(sample())) << reader.lastErrorText();
    EXPECT_THAT(findings(), IsEmpty());
    EXPECT_EQ(reader.samplingRate(), 100.0);
    EXPECT_EQ(reader.sampleCount(), 2050);
    ASSERT_EQ(reader.sampleTimeCount(), 2);
    EXPECT_EQ(reader.getClockTime(0.0), 86390.5);
    EXPECT_EQ(reader.getClockTime(12.5), 86400 + 30000.0);
    EXPECT_STREQ(reader.patientRec()->testDate, "2019.12.31");
    EXPECT_STREQ(reader.patientRec()->testTime, "23:59:50");
    EXPECT_STREQ(reader.channelName(0), "Fp1-Ref");
    EXPECT_STREQ(reader.channelName(1), "Resp");
    EXPECT_STREQ(reader.channelName(2), "Cz-A1");
    EXPECT_EQ(reader.storedSamplingRate(1), 32.0);
    for (long i = 0; i < 2050; i += 49) {
        EXPECT_EQ(rawOf(reader, 2, i, i)[0], rampCount(2, i)) << i;
        const long own = i < 1250 ? i * 32 / 100 : 400 + (i - 1250) * 32 / 100;
        EXPECT_EQ(rawOf(reader, 1, i, i)[0], rampCount(1, own)) << i;
        EXPECT_FLOAT_EQ(valuesOf(reader, 1, i, i)[0], static_cast<float>(rampCount(1, own) * -1.5));
        EXPECT_FLOAT_EQ(valuesOf(reader, 2, i, i)[0], static_cast<float>(rampCount(2, i) * 1e-4));
    }
    EXPECT_EQ(reader.channelType(1), 1);
    EXPECT_EQ(openReader(dir.file("Rec.e").c_str())->fileType(), 52);
}

TEST_F(Nervus, TheIndexIsReadAsFarAsItIsSound) {
    const NervusFile::Made made = sample().entriesPerBlock(5).make();
    const std::size_t block2 = made.places.at("index") + 16 + 24 * 5; // block of the index
    const std::size_t next = block2 - 8;
    const auto poked = [&](std::size_t offset, const std::string& bytes) {
        return std::string(made.bytes).replace(offset, bytes.size(), bytes);
    };
    const auto refuses = [&](const std::string& bytes, const char* sentence) {
        EXPECT_FALSE(opens(bytes)) << sentence;
        EXPECT_EQ(reader.getLastError(), 2);
        EXPECT_THAT(reader.lastErrorText(), HasSubstr(sentence));
    };
    refuses(poked(next, number(made.places.at("index"), 8)), "the index goes round");
    refuses(poked(next, number(block2 - 40, 8)), "no channel is described");
    refuses(poked(24, number(0xFFFFFFFF, 4)), "section of segments has 0 bytes");
    refuses(poked(172208, number(0, 4)), "number of index entries (offset 172208) is 0");
    // A later block is lost: what was listed before it is shown.
    const std::size_t fifth = made.places.at("index") + 4 * (16 + 24 * 5);
    for (const auto& [offset, bytes, sentence] :
         {std::tuple(fifth - 8, number(1ULL << 63, 8), "leaves the file"),
          std::tuple(fifth - 8, number(0, 8), "may still have been written"),
          std::tuple(fifth, number(~0ULL, 8), "says 18446744073709551615 entries"),
          std::tuple(fifth, number(0, 8), "says 0 entries"),
          std::tuple(std::size_t{172208}, number(18, 4), "of which only 3 count")}) {
        ASSERT_TRUE(opens(poked(offset, bytes))) << reader.lastErrorText();
        EXPECT_THAT(findings(), Contains(HasSubstr(sentence)));
        EXPECT_THAT(findings(), Contains(HasSubstr("of the announced 20.5 s")));
        EXPECT_GT(reader.sampleCount(), 99);
        EXPECT_LT(reader.sampleCount(), 400);
        for (long i = 0; i < reader.sampleCount(); ++i)
            ASSERT_EQ(rawOf(reader, 2, i, i)[0], rampCount(2, i));
    }
    ASSERT_TRUE(opens(poked(172208, number(99999, 4))));
    EXPECT_EQ(reader.sampleCount(), 2050);
    EXPECT_THAT(findings(), ElementsAre(HasSubstr("may still have been written")));
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
    const auto poked = [&](std::size_t offset, const std::string& bytes) {
        return std::string(made.bytes).replace(offset, bytes.size(), bytes);
    };
    ASSERT_TRUE(opens(poked(entryOf(6) + 8, number(~0ULL, 8)))); // the third second of Fp1
    EXPECT_EQ(reader.sampleCount(), 200);
    EXPECT_EQ(rawOf(reader, 2, 199, 199)[0], rampCount(2, 199));
    EXPECT_THAT(findings(), ElementsAre(HasSubstr("section 0 is cut"), HasSubstr("channel 1 has")));
    const struct {
        std::size_t offset;
        std::string bytes;
        const char* sentence;
    } cases[] = {
        {entryOf(6) + 20, number(199, 4), "which are no whole samples"},
        {entryOf(6) + 8, made.bytes.substr(entryOf(3) + 8, 8), "overlap"},
        {entryOf(6), number(108, 1), "of the announced"},
    };
    for (const auto& c : cases) {
        const bool opened = opens(poked(c.offset, c.bytes));
        EXPECT_THAT(opened ? findings().back() : std::string(reader.lastErrorText()),
                    HasSubstr(c.sentence));
    }
    std::string greedy = made.bytes; // every piece claims four gigabytes of the file's end
    for (std::size_t i = 0; i < 20; ++i)
        greedy.replace(entryOf(i) + 20, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_FALSE(opens(greedy));
}

TEST_F(Nervus, ChannelsThatEndEarlyEndTheRecording) {
    ASSERT_TRUE(opens(sample().held(1, 410))); // 10 of the second segment
    EXPECT_EQ(reader.sampleCount(), 1250 + 31);
    EXPECT_EQ(rawOf(reader, 1, 1280, 1280)[0], rampCount(1, 409));
    EXPECT_THAT(findings(),
                ElementsAre(HasSubstr("to 12.81 s of the announced 20.5 s: channel 2")));
    ASSERT_TRUE(opens(sample().held(2, 777)));
    EXPECT_EQ(reader.sampleCount(), 777);
    EXPECT_EQ(reader.sampleTimeCount(), 1);
    ASSERT_TRUE(opens(sample().held(2, 0)));
    EXPECT_EQ(reader.channelCount(), 2);
    EXPECT_THAT(findings(), ElementsAre(HasSubstr("channel 3 is left out: there are no samples")));
    NervusFile::Made made = sample().make();
    made.bytes.replace(made.places.at("SegmentStream") + 16, 8, test::Bytes().add(2.0).str());
    ASSERT_TRUE(opens(made.bytes));
    EXPECT_THAT(findings(), Contains(HasSubstr("channel 1 holds 1050 samples more than")));
}

TEST_F(Nervus, PacketsOfChannelsMustAgree) {
    ASSERT_TRUE(opens(sample().packet(100).packet(100)));
    EXPECT_THAT(findings(), IsEmpty());
    EXPECT_FALSE(opens(sample().packet(100).packet(50)));
    EXPECT_EQ(reader.getLastError(), 3);
    EXPECT_THAT(reader.lastErrorText(),
                HasSubstr("packet 3 of its channels describes channel 1 in"));
    const NervusFile::Made made = sample().make();
    const std::size_t change = made.places.at("InfoChangeStream") + 60 + 3 - 12; // in two pieces
    const std::size_t packet = made.places.at(NervusFile::series) + 9;
    const auto poked = [&](std::size_t offset, const std::string& bytes) {
        return std::string(made.bytes).replace(offset, bytes.size(), bytes);
    };
    EXPECT_FALSE(opens(poked(change + 32, number(1ULL << 40, 8))));
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("offset 1099511627776 is outside their section"));
    ASSERT_TRUE(opens(poked(packet + 752, number(~0ULL, 4))));
    EXPECT_EQ(reader.channelCount(), 3);
    EXPECT_THAT(findings().at(0), HasSubstr("says 4294967295 channels and holds 3"));
    ASSERT_TRUE(opens(poked(change + 40, number(760 + 552 * 2 + 551, 8))));
    EXPECT_EQ(reader.channelCount(), 2);
    EXPECT_FALSE(opens(poked(change + 40, number(760 + 551, 8))));
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("no channel is described"));

    ASSERT_TRUE(opens(sample().unlisted()));
    EXPECT_EQ(reader.channelCount(), 3);
    EXPECT_THAT(findings(), ElementsAre(HasSubstr("no change lists its channels")));
}

TEST_F(Nervus, OddChannelsAreToldOrLeftOut) {
    NervusFile::Made made = sample()
                                .channel({})
                                .channel({.resolution = std::nan("")})
                                .channel({.label = "", .offset = 2.5})
                                .make();
    // The fourth record's rate, behind the gap between the section's two pieces.
    made.bytes.replace(made.places.at(NervusFile::series) + 9 + 3 + 760 + 552 * 3 + 272, 8,
                       test::Bytes().add(HUGE_VAL).str());
    ASSERT_TRUE(opens(made.bytes));
    EXPECT_EQ(reader.channelCount(), 4);
    EXPECT_THAT(findings(),
                ElementsAre(HasSubstr("channel 4 is left out: its sampling rate is inf"),
                            HasSubstr("channel 5 is left out: it has nan uV"),
                            HasSubstr("channel 6 has an offset of 2.5")));
    EXPECT_STREQ(reader.grid1(3), "Ch6");
    EXPECT_EQ(rawOf(reader, 3, 9, 9)[0], rampCount(5, 9));
}

TEST_F(Nervus, ThePatientIsRead) {
    const NervusFile file = sample()
                                .value(23, 1.8)
                                .value(7, oleDays(1964, 8, 12, 0))
                                .text(4, "Muster")
                                .text(9, "Street")
                                .text(2, "Erika")
                                .text(1, "P-4711")
                                .text(10, "Female")
                                .text(12, "")
                                .text(13, "Left");
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
        std::string lies = made.bytes;
        lies.replace(place + field, 8, std::string(8, '\xFF'));
        ASSERT_TRUE(opens(lies));
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
    ASSERT_TRUE(opens(file));
    EXPECT_THAT(events(), ElementsAre("150 eyes closed", "1250 Seizure: left", "1250 in the pause",
                                      "2049 own type", "2050 Event"));
    std::deque<ClientEvent> read;
    reader.readEvents(read);
    EXPECT_EQ(read[0].duration, 0.5);
    EXPECT_EQ(read[3].duration, 0.0);
    const NervusFile::Made made = file.make();
    for (const std::uint64_t length : {0ULL, 23ULL, 100ULL, 1ULL << 62, ~0ULL}) {
        std::string lies = made.bytes;
        lies.replace(made.places.at("Events") + 16, 8, number(length, 8));
        ASSERT_TRUE(opens(lies));
        EXPECT_THAT(events(), IsEmpty()) << length;
    }
    std::string lies = made.bytes;
    lies.replace(made.places.at("Events") + 128, 8, number(~0ULL, 8));
    ASSERT_TRUE(opens(lies));
    EXPECT_THAT(events(), Contains("150 eyes closed")) << "what of the text is in the packet";
}

TEST_F(Nervus, OtherVariantsAndLyingHeadersAreRefused) {
    const NervusFile::Made made = sample().make();
    const auto poked = [&](std::size_t offset, const std::string& bytes) {
        return std::string(made.bytes).replace(offset, bytes.size(), bytes);
    };
    const std::size_t segments = made.places.at("SegmentStream");
    const auto seconds = [](double value) { return test::Bytes().add(value).str(); };
    const struct {
        std::string bytes;
        int error;
        const char* sentence;
    } cases[] = {
        {poked(24, number(0, 4)), 3, "older Nervus generation"},
        {poked(172, number(0, 4)), 2, "number of tags (offset 172) is 0"},
        {poked(172, number(~0ULL, 4)), 2, "is 4294967295, 1 to 2048"},
        {poked(172, number(6, 4)), 2, "of 3 channels none can be shown"},
        {poked(176, std::string(168, 'x')), 3, "none of its 9 tags"},
        {poked(176 + 84 * 6 + 80, number(107, 4)), 2, "tags 0 and 1 share section 107"},
        {poked(176 + 84 * 7, "0"), 2, "two tags 0"},
        {made.bytes.substr(0, 170), 2, "ends after 170 bytes"},
        {made.bytes.substr(0, 172000), 2, "ends after 172000 bytes"},
        {poked(segments + 16, seconds(-1)), 2, "segment 1 lasts -1 s"},
        {poked(segments + 16, seconds(std::nan(""))), 2, "segment 1 lasts nan s"},
        {NervusFile().channel({}).segment(first, 0).make().bytes, 2, "none can be shown"},
        {NervusFile().channel({}).make().bytes, 2, "section of segments has 0 bytes"},
        {made.bytes.substr(0, made.places.at("data")), 2, "no samples"},
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(opens(c.bytes)) << c.sentence;
        EXPECT_EQ(reader.getLastError(), c.error) << c.sentence;
        EXPECT_THAT(reader.lastErrorText(), HasSubstr(c.sentence));
    }
    std::string error;
    EXPECT_FALSE(openReader(dir.write("old.e", poked(24, number(0, 4))).c_str(), 0, &error));
    EXPECT_THAT(error, HasSubstr("older Nervus generation"));
    ASSERT_TRUE(opens(poked(segments + 16, seconds(1e300))));
    EXPECT_EQ(reader.sampleCount(), 2050);
    ASSERT_TRUE(opens(poked(segments, seconds(1e300))));
    EXPECT_EQ(reader.getClockTime(0.0), 0.0);
    EXPECT_THAT(findings().at(0), HasSubstr("2 of 2 segments have no date"));
}

} // namespace
} // namespace kvsig
