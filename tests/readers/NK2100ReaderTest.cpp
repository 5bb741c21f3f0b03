#include "kvsig/readers/NK2100Reader.h"

#include "kvsig/registry/FrontDoor.h"
#include "support/NihonKohdenFile.h"
#include "support/Opened.h"
#include "support/ReaderFixture.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct NihonKohden : ReaderFixture<NK2100Reader> {
    NihonKohden() : ReaderFixture("Rec.EEG") {}

    static NihonKohdenFile sample() {
        return NihonKohdenFile().rate(200).block("20190403160016", 400);
    }

    static constexpr double start = 16 * 3600 + 16;
    static constexpr const char* names = "[SYSTEM]\r\n0000=no\r\n[ELECTRODE] \r\n0000=Fp2\r\n"
                                         "0001=Fp1\r\n0022=A1\r\n[REFERENCE]\r\n0000=$X\r\n"
                                         "0042=$ECG\r\n0076=$A1\r\n[SD_DEF]\r\n0001=SD\r\n";
};

TEST_F(NihonKohden, CodesTellUnitsAndTheElectrodeFileNames) {
    const NihonKohdenFile file = sample().codes({0, 1, 36, 42, 73, 76, 100, 253, 254, 255, 41, 99});
    ASSERT_TRUE(opens(file)) << reader.lastErrorText();
    const auto grids = [&] {
        std::vector<std::string> texts;
        for (int c = 0; c < reader.channelCount(); ++c)
            texts.emplace_back(reader.grid1(c));
        return texts;
    };
    EXPECT_THAT(grids(), ElementsAre("FP1", "FP2", "X11", "DC01", "DC32", "Mark1", "X12", "X165",
                                     "AVG", "Z", "0V", "In99"));
    EXPECT_THAT(findings(), ElementsAre(HasSubstr("no .21E")));
    dir.write("rec.21e", names);
    ASSERT_TRUE(opens(file));
    EXPECT_THAT(grids(), ElementsAre("Fp2", "Fp1", "X11", "ECG", "DC32", "$A1", "X12", "X165",
                                     "AVG", "Z", "0V", "In99"));
    EXPECT_TRUE(findings().empty());
    dir.write("rec.21e", names + std::string(1 << 20, ' '));
    ASSERT_TRUE(opens(file));
    EXPECT_THAT(findings(), ElementsAre(HasSubstr(".21E beside it the first 1048576 bytes of")));
    EXPECT_STREQ(reader.channelName(0), "Fp2-Ref");
    for (int c = 0; c < 12; ++c) {
        const bool milli = c >= 3 && c <= 5;
        EXPECT_STREQ(reader.channelUnits(c), milli ? "mV" : "uV");
        EXPECT_EQ(reader.channelType(c), milli ? 100 : 1);
        for (long i = 0; i < 50; ++i) {
            const double digital = rampCount(c, i);
            const double low = milli ? -12002.9 : -3200.0, high = milli ? 12002.56 : 3199.90234375;
            EXPECT_NEAR(valuesOf(reader, c, i, i)[0],
                        low + (digital + 32768) * (high - low) / 65535, 1e-3)
                << c;
        }
    }
    EXPECT_DOUBLE_EQ(reader.physioLow(3), -12002.9);
    EXPECT_DOUBLE_EQ(reader.physioHigh(3), 12002.56);
    EXPECT_EQ(reader.digitalLow(3), -32768);
    EXPECT_EQ(reader.digitalHigh(3), 32767);
    std::filesystem::remove(dir.file("rec.21e"));
    std::filesystem::create_symlink("nowhere", dir.file("rec.21e"));
    EXPECT_FALSE(opens(file)) << "the device's own names may be wrong";
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("of the .21E beside it: no such file"));
}

TEST_F(NihonKohden, BlocksOfAllControlBlocksAreSegments) {
    NihonKohdenFile file;
    file.block("19991231235950", 400).block("20000101000010", 200);
    reads({{file.control().block("20000101120000", 300).bytes(), 900, "2 control blocks", 3}});
    EXPECT_EQ(reader.getClockTime(0.0), 86390.0);
    EXPECT_EQ(reader.getClockTime(2.0), 86410.0);
    EXPECT_EQ(reader.getClockTime(3.5), 86400 + 43200 + 0.5);
    EXPECT_STREQ(reader.patientRec()->testDate, "1999.12.31");
    EXPECT_STREQ(reader.patientRec()->testTime, "23:59:50");
    EXPECT_EQ(reader.openFindings().front().severity, OpenFinding::Severity::warning);
}

TEST_F(NihonKohden, ThePatientPageLeadsToTheSamples) {
    const std::string page = dir.write("rec.pnt", nihonKohdenPage());
    EXPECT_FALSE(reader.open(page.c_str()));
    EXPECT_EQ(reader.getLastError(), 1);
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("no .EEG beside this patient page"));
    dir.write("mb0400fu.Eeg", sample().bytes()); // the name that the page holds
    ASSERT_TRUE(reader.open(page.c_str())) << reader.lastErrorText();
    std::filesystem::rename(dir.file("mb0400fu.Eeg"), dir.file("REC.EEG"));
    std::string error;
    const ReaderPtr found = openReader(page.c_str(), 0, &error);
    ASSERT_TRUE(found) << error;
    EXPECT_EQ(found->fileType(), 19);
    EXPECT_EQ(found->fileName(), page);
    EXPECT_EQ(found->sampleCount(), 400);

    ASSERT_TRUE(reader.open(dir.file("REC.EEG").c_str()));
    const PatientRec& patient = *reader.patientRec();
    EXPECT_EQ(patient.name(), "Muster, Erika");
    EXPECT_STREQ(patient.id, "P-4711");
    EXPECT_STREQ(patient.sex, "F");
    EXPECT_STREQ(patient.birthDate, "1964.08.12");
    EXPECT_STREQ(patient.physician, "Dr. Arzt");
    EXPECT_STREQ(patient.rawRecording, "MB04");
    EXPECT_STREQ(patient.testDate, "2019.04.03");
    for (std::size_t length = 0; length < nihonKohdenPage().size(); length += 101) {
        dir.write("rec.pnt", nihonKohdenPage().substr(0, length));
        ASSERT_TRUE(reader.open(dir.file("REC.EEG").c_str())) << length;
        EXPECT_EQ(reader.patientRec()->name(), length < 0x6AA ? "Doe" : "Muster, Erika");
        EXPECT_EQ(findings().size(), length < 0x6AA ? 2U : 1U) << "beside the missing .21E";
    }
}

TEST_F(NihonKohden, PagesOfAnotherRecordingAreNotBelieved) {
    const struct {
        const char *stem, *exam;
        bool belongs;
    } cases[] = {{"MB0400FU", "2019/04/09", true},
                 {"XX000001", "2019/04/03", true},
                 {"XX000001", "2019/04/04", false},
                 {"XX000001", "", false},
                 {"", "2019/04/05", false},
                 {"", "2019/04/02", true},
                 {"", "", true}};
    const std::string samples = dir.write("Rec.EEG", sample().bytes());
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.stem) + c.exam);
        const std::string page = dir.write("Rec.PNT", nihonKohdenPage(c.stem, c.exam));
        ASSERT_TRUE(reader.open(samples.c_str()));
        EXPECT_EQ(reader.patientRec()->name(), c.belongs ? "Muster, Erika" : "Doe");
        EXPECT_EQ(findings().size(), c.belongs ? 1U : 2U);
        EXPECT_EQ(reader.open(page.c_str()), c.belongs);
        if (!c.belongs) {
            EXPECT_THAT(reader.lastErrorText(), HasSubstr("another recording than the .EEG"));
        }
    }
}

TEST_F(NihonKohden, EventsStandAtTheirSamples) {
    const std::string made =
        NihonKohdenLog()
            .entry("REC START ALLE EEG", "000000", "(190403160016)")
            .entry("A1+A2 OFF, a text that is longer", "000001", "(190403160017)", "140000")
            .entry("", "000001", "")
            .entry("no time", "0000x1", "")
            .entry("behind", "000009", "(190403160025)")
            .block()
            .entry("last", "000002", "")
            .bytes();
    dir.write("rec.log", made);
    ASSERT_TRUE(opens(sample()));
    EXPECT_THAT(events(), ElementsAre("0 REC START ALLE EEG",
                                      "228 A1+A2 OFF, a text that is longer", "400 last"));
    for (std::size_t length = 0; length < made.size(); length += length < 1400 ? 61 : 9) {
        dir.write("rec.log", made.substr(0, length));
        ASSERT_TRUE(opens(sample())) << length;
        EXPECT_LE(events().size(), 3U);
        EXPECT_GE(findings().size(), 2U) << length << ": the .21E is missing, and part of the .LOG";
    }
    dir.write("rec.log", NihonKohdenLog().entry("other", "000001", "(180403160017)").bytes());
    ASSERT_TRUE(opens(sample()));
    EXPECT_TRUE(events().empty());
    EXPECT_THAT(findings(), tells("another recording"));

    // 127 log blocks; the second one is the first again, two leave the file.
    std::string lies = poked(poked(made, 0x91, u8(127)), 0x92 + 20, u8(0));
    for (const std::size_t address : {0x92U + 40U, 0x92U + 60U})
        lies = poked(lies, address, u32(~0U));
    dir.write("rec.log", lies);
    ASSERT_TRUE(opens(sample()));
    EXPECT_EQ(events().size(), 2U);
    EXPECT_THAT(findings(), tells("is 127, it can hold 22"));
    EXPECT_THAT(findings(), tells("twice"));
    EXPECT_THAT(findings(), tells("offset 4294967295 is not between"));
}

TEST_F(NihonKohden, WithPausesTheClockPlacesEvents) {
    dir.write("Rec.LOG", NihonKohdenLog()
                             .entry("same", "000002", "(190403170000)", "500000")
                             .entry("counts pauses", "010001", "(190403170001)")
                             .entry("no clock", "000001", "")
                             .bytes());
    ASSERT_TRUE(opens(sample().block("20190403170000", 400)));
    EXPECT_THAT(events(), ElementsAre("200 no clock", "500 same", "600 counts pauses"));
    EXPECT_EQ(findings().size(), 1U) << "there is no .21E";
    // Set back by 8 of the first block's 10 s.
    dir.write("Rec.LOG", NihonKohdenLog().entry("first", "000003", "(190403160019)").bytes());
    ASSERT_TRUE(
        opens(NihonKohdenFile().block("20190403160016", 2000).block("20190403160018", 400)));
    EXPECT_THAT(events(), ElementsAre("600 first"));
    EXPECT_THAT(findings(), tells("segment 2 of 2 begins 8.000 s before what is before it ends"));
}

TEST_F(NihonKohden, LengthsThatLieGiveWhatIsThere) {
    const auto one = [](std::int64_t tenths) {
        return NihonKohdenFile().block("20190403160016", 400, tenths).bytes();
    };
    const NihonKohdenFile three = NihonKohdenFile()
                                      .block("20190403160016", 200, 99)
                                      .block("20190403170000", 100)
                                      .block("20190403180000", 40, 0);
    reads({{one(0xFFFFFFFF), 400, "says 85899345900 samples, 400 are there"},
           {one(0), 400, "was not closed"},
           {one(10), 200, "200 more would have room"},
           {three.bytes(), 300, "none of the 40 samples"}}); // the next block's head is no sample
}

TEST_F(NihonKohden, ClocksThatAreNoneAreTold) {
    for (const auto& [text, sentence] :
         {std::pair("no time of day", "start (offset 64) is no date and time"),
          {"20190403160011", "begins 5 s after the start"}}) {
        reads({{sample().start(text).bytes(), 400, sentence}});
        EXPECT_EQ(reader.getClockTime(0.0), start);
    }
    const NihonKohdenFile two = sample().block("20190403160030", 400);
    const std::string noDecimal = poked(two.bytes(), two.blockOffset(1) + 0x15, u8(0x1A));
    reads({{noDecimal, 800, "block 2 has no date and time"}});
    EXPECT_EQ(reader.getClockTime(3.0), start + 3.0);
}

TEST_F(NihonKohden, OtherVariantsAndLyingHeadersAreRefused) {
    const NihonKohdenFile two = sample().block("20190403170000", 100);
    const std::string good = two.bytes();
    const std::size_t second = two.blockOffset(1), usual = NihonKohdenFile::firstBlock;
    const std::string inside = // the code of channel 2 is 1
        poked(poked(good, 0x400 + 38, u32(usual + 0x31)), usual + 0x31 + 0x1A, u8(1));
    refuses({
        {NihonKohdenFile("EEG-1200A V01.00").block("20190403160016", 9).bytes(), 3, "EEG-1200A"},
        {NihonKohdenFile("EEG-9999A V01.00").block("20190403160016", 9).bytes(), 3, "no signature"},
        {good.substr(0, 9), 2, "inside the device signature"},
        {poked(good, 0x81, "EEG-2100  V01.00"), 2, "(offset 129) is \"EEG-2100  V01.00\", not"},
        {nihonKohdenPage() + std::string(4096, '\0'), 3, "samples are in the .EEG"},
        {poked(good, 0x91, u8(0)), 2, "number of blocks (offset 145) is 0"},
        {poked(good, 0x91, "\2"), 2, "control block 2 of 2 (offset 0) begins where"},
        {poked(good, 0x92, u32(0xFFFFFFFF)), 2, "control block 1 of 1 (offset 4294967295) leaves"},
        {poked(good, 0x400 + 17, u8(0)), 2, "no waveform block"},
        {poked(good, 0x400 + 17, "\3"), 2, "mark of a waveform block (offset 0) is 69"},
        {poked(good, 0x400 + 38, u32(usual)), 2, "block at offset 6142 begins where another"},
        {poked(good, 0x400 + 38, u32(0x7FFFFFFF)), 2, "offset 2147483647 leaves the file"},
        {poked(good, 0x400 + 38, u32(usual + 0x3C)), 2, "(offset 6202) is 0, not 1"},
        {inside, 2, "offset 6142 runs into the one at offset 6191"},
        {poked(good, usual, "\2"), 3, "the byte at offset 6142 is 2"},
        {poked(good, usual + 0x1A, std::string("\0\xC0", 2)), 2, "is 49152, which is 0 Hz"},
        {poked(good, usual + 0x26, u8(0)), 2, "number of channels (offset 6180) is 0"},
        {poked(good, second + 0x1A, std::string("\x64\0", 2)), 3, "has 100 Hz, the first has 200"},
        {poked(good, second + 0x27, "\5"), 3, "other channels than the first"},
        {good.substr(0, second), 2, "leaves the file"},
        {sample().bytes().substr(0, usual + sample().headBytes() + 9), 2, "no samples"},
    });
    ASSERT_TRUE(opens(NihonKohdenFile("EEG-2100  V07.00").block("20190403160016", 40)));
    EXPECT_THAT(findings().at(0), HasSubstr("unknown version V07.00"));
    dir.write("Rec.PNT", nihonKohdenPage());
    dir.write("Rec.EEG", good.substr(0, 9));
    EXPECT_FALSE(reader.open(dir.file("Rec.PNT").c_str()));
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("Rec.PNT: its samples (.EEG): the file ends"));
}

} // namespace
} // namespace kvsig::test
