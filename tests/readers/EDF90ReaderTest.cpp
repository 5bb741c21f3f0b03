#include "kvsig/readers/EDF90Reader.h"

#include "support/ChannelFacts.h"
#include "support/LogCapture.h"
#include "support/Opened.h"
#include "support/ReadAround.h"

#include <array>

namespace kvsig::test {
namespace {

using Edf = Opened<EDF90Reader>;
using Severity = OpenFinding::Severity;
constexpr double infinity = std::numeric_limits<double>::infinity();

EdfFile oneSignal(const std::string& label = "EEG Fp1-Ref") {
    return EdfFile().signal(label, 4).records(5);
}

double startClock(DataReader& reader) {
    SampleTime anchor{-1, -1};
    reader.getSampleTime(0, anchor);
    EXPECT_EQ(anchor.sample, 0);
    return anchor.time;
}

std::string findingsOf(const DataReader& reader, Severity severity) {
    std::string texts;
    for (const OpenFinding& finding : reader.openFindings())
        if (finding.severity == severity)
            texts += finding.text + "\n";
    return texts;
}

TEST(EDF90Reader, NamesComeFromLabels) {
    for (const auto& [label, names] : {std::pair{"EEG C3-A2", "C3-A2|C3|A2"},
                                       {"ECG", "ECG|ECG|"},
                                       {"", "|1|"},
                                       {"EEG-Fz", "EEG-Fz|EEG|Fz"},
                                       {"EEG  Pz", " Pz| Pz|"},
                                       {"A-B-C", "A-B-C|A|B-C"},
                                       {"0123456789abcdef", "0123456789abcdef|0123456789abcde|"}}) {
        Edf reader(oneSignal(label));
        EXPECT_EQ(namesOf(reader, 0), names);
    }
}

TEST(EDF90Reader, UnitsDecideTheType) {
    const struct {
        const char* units;
        int type;
    } cases[] = {{"uV", 1},   {"\xB5V", 1},     {"10 uV/mm", 1}, {"mV", 100},    {"", 100},
                 {"UV", 100}, {"\xC2\xB5V", 1}, {"DegC", 100},   {"\xB5W", 100}, {"u V", 100}};
    for (const auto& c : cases) {
        Edf reader(oneSignal().units(c.units));
        EXPECT_EQ(reader.channelType(0), c.type) << c.units;
        EXPECT_STREQ(reader.channelUnits(0), c.units);
    }
}

TEST(EDF90Reader, LimitsGiveRangeCalibrationAndOffset) {
    const struct {
        const char *units, *physicalLow, *physicalHigh, *digitalLow, *digitalHigh;
        double low, high, calibration, offset;
        std::int32_t lowCount, highCount;
    } cases[] = {
        {"uV", "-100", "100", "-1000", "1000", -100, 100, 0.1, 0, -1000, 1000},
        {"uV", "100", "-100", "-1000", "1000", 100, -100, -0.1, 0, -1000, 1000},
        {"mV", "0", "10.24", "0", "1024", 0, 10.24, 0.01, 5.12, 0, 1024},
        {"uV", "1e2", "+3e2", "-1.9", "2.9", 100, 300, 200.0 / 3, 200, -1, 2},
        // Switches carry words; those of other units do, microvolt channels have no words.
        {"", "off", "on", "0", "1", 0, 0, 0, 0, 0, 1},
        {"", "?", "?", "0", "1", -1, 1, 2, 0, 0, 1},
        {"", "on", "off", "0", "1", 0, 0, 0, 0, 0, 1},
        {"uV", "?", "?", "0", "1", 0, 0, 0, 0, 0, 1},
        // Equal digital limits trap nothing; numbers beyond 32 bits are held at the limit.
        {"uV", "0", "1", "5", "5", 0, 1, infinity, 0.5, 5, 5},
        {"uV", "0", "1", "-9e99999", "9e99999", 0, 1, 1 / 4294967295.0, 0.5, INT32_MIN, INT32_MAX},
    };
    for (const auto& c : cases) {
        Edf reader(oneSignal()
                       .units(c.units)
                       .physical(c.physicalLow, c.physicalHigh)
                       .digital(c.digitalLow, c.digitalHigh));
        ASSERT_TRUE(reader.isOpen);
        SCOPED_TRACE(std::string(c.units) + " " + c.physicalLow + " " + c.digitalLow);
        EXPECT_DOUBLE_EQ(reader.physioLow(0), c.low);
        EXPECT_DOUBLE_EQ(reader.physioHigh(0), c.high);
        EXPECT_DOUBLE_EQ(reader.calibration(0), c.calibration);
        EXPECT_DOUBLE_EQ(reader.dcOffset(0), c.offset);
        EXPECT_EQ(reader.digitalLow(0), c.lowCount);
        EXPECT_EQ(reader.digitalHigh(0), c.highCount);
    }
}

TEST(EDF90Reader, TheFastestChannelGivesTheRate) {
    EdfFile file = EdfFile().signal("EDF Annotations", 50).signal("slow", 3).signal("fast", 8);
    file.signal("half", 4).duration("0.5").records(6).reserved("EDF+C");
    Edf reader(file);
    ASSERT_TRUE(reader.isOpen);
    EXPECT_EQ(reader.chunkPts(), 8);
    const double stored[] = {6.0, 16.0, 8.0};
    for (int c = 0; c < 3; ++c) {
        EXPECT_EQ(reader.channelSamplingRate(c), 16.0);
        EXPECT_EQ(reader.storedSamplingRate(c), stored[c]);
    }
}

// A header that claims thousands of signals must not cost thousands of sentences.
TEST(EDF90Reader, TheSameOddityOfManySignalsIsToldInShort) {
    Edf reader(oneSignal().poke(252, "9999").truncate(300));
    EXPECT_FALSE(reader.isOpen);
    EXPECT_LT(reader.openFindings().size(), 60U);
    EXPECT_THAT(
        reader.openFindings(),
        Contains(testing::Field(&OpenFinding::text, HasSubstr("9979 more signals are below 1"))));
}

TEST(EDF90Reader, TheFileLengthGivesTheNumberOfRecords) {
    const struct {
        std::size_t cut; // bytes off the end of five records of 8 bytes
        const char *count, *tail;
        long samples;
    } cases[] = {
        {0, "5       ", "", 20}, {0, "-1      ", "", 20},   {0, "99999999", "", 20},
        {0, "0       ", "", 20}, {1, "5       ", "", 16},   {8, "5       ", "", 16},
        {9, "5       ", "", 12}, {0, "5       ", "\n", 20}, {0, "5       ", "12345678", 24},
    };
    for (const auto& c : cases) {
        Edf reader(oneSignal()
                       .poke(236, c.count)
                       .append(c.tail)
                       .truncate(c.cut ? 512 + 40 - c.cut : std::string::npos));
        EXPECT_TRUE(reader.isOpen);
        EXPECT_EQ(reader.sampleCount(), c.samples);
        EXPECT_EQ(reader.storedSampleCount(), c.samples);
    }
}

TEST(EDF90Reader, AHeaderLongerThanItsSignalsNeedIsSkipped) {
    // Two records' worth of padding declared as header.
    Edf reader(oneSignal().poke(184, "528     "));
    ASSERT_TRUE(reader.isOpen);
    EXPECT_EQ(reader.headerLength(), 528);
    EXPECT_EQ(reader.sampleCount(), 12);
    EXPECT_EQ(rawOf(reader, 0, 0, 11), rawOf(*std::make_unique<Edf>(oneSignal()), 0, 8, 19));
}

TEST(EDF90Reader, TheStartTimeAnchorsSampleZero) {
    const struct {
        const char* time;
        double clock;
        bool told;
    } cases[] = {
        {"00.00.00", 0, false},    {"23.59.59", 86399, false}, {"1.2.3", 3723, false},
        {" 1. 2. 3", 3723, false}, {"12.34.5x", 45245, false}, {"26.00.99", 93699, true},
        {"24.00.00", 86400, true}, {"0.60.0", 3600, true},     {"0.0.-1", -1, true},
        {"23:05:07", 0, true},     {"23.05", 0, true},         {"", 0, true},
        {"ab.cd.ef", 0, true},     {"23.05.", 0, true},
    };
    for (const auto& c : cases) {
        Edf reader(oneSignal().start("04.07.89", c.time));
        EXPECT_EQ(reader.sampleTimeCount(), 1) << c.time;
        EXPECT_EQ(startClock(reader), c.clock) << c.time;
        EXPECT_STREQ(reader.patientRec()->testTime, c.time);
        EXPECT_EQ(findingsOf(reader, Severity::warning),
                  c.told ? std::string("start time (offset 176) is \"") + c.time +
                               "\", no time as hh.mm.ss\n"
                         : "");
    }
    EDF90Reader anchored;
    SampleTime own{0, 100.0};
    anchored.addSampleTime(own);
    const TempDir dir;
    const std::string path = dir.write("a.edf", oneSignal().bytes());
    for (int round = 0; round < 2; ++round) { // an anchor of the host's own stays
        ASSERT_TRUE(anchored.open(path.c_str()));
        EXPECT_EQ(startClock(anchored), 100.0);
    }
}

TEST(EDF90Reader, DatesGetTheirCenturyByTheFormatsOwnPivot) {
    const struct {
        const char *date, *plain, *plus;
        bool told;
    } cases[] = {
        {"04.07.89", "2089.07.04", "1989.07.04", false},
        {"01.12.84", "2084.12.01", "2084.12.01", false},
        {"31.01.90", "1990.01.31", "1990.01.31", false},
        {"29.02.00", "2000.02.29", "2000.02.29", false},
        {"29.02.90", "1990.02.29", "1990.02.29", true},
        {"45.13.99", "1999.13.45", "1999.13.45", true},
        {"00.01.99", "1999.01.00", "1999.01.00", true},
        {"04-07-89", "04-07-89", "04-07-89", true},
        {"", "", "", true},
        {"1.1.1989", "3889.01.01", "3889.01.01", true},
    };
    for (const auto& c : cases) {
        Edf plain(oneSignal().start(c.date, "00.00.00"));
        Edf plus(oneSignal().start(c.date, "00.00.00").reserved("EDF+C"));
        EXPECT_STREQ(plain.patientRec()->testDate, c.plain) << c.date;
        EXPECT_STREQ(plus.patientRec()->testDate, c.plus) << c.date;
        EXPECT_EQ(findingsOf(plus, Severity::warning),
                  c.told ? std::string("start date (offset 168) is \"") + c.date +
                               "\", no date as dd.mm.yy\n"
                         : "");
    }
}

TEST(EDF90Reader, PatientWordsAreSplitInEdfPlusOnly) {
    const std::string seventy(70, 'n');
    const struct {
        bool plus;
        std::string patient;
        const char *id, *sex, *birthDate;
        std::string name;
    } cases[] = {
        {true, "MCH-02 F 02-MAY-1951 Haagse_Harry", "MCH-02", "F", "02-MAY-1951", "Haagse_Harry"},
        {true, "X X X X more", "", "", "", "X X X X more"},
        {true, "12345678901234567890123 12345678 1234567890123 N", "1234567890123456789", "1234567",
         "12345678901", "N"},
        {false, "MCH-02 F 02-MAY-1951 Harry", "Startdate X 2 3 too", "", "",
         "MCH-02 F 02-MAY-1951 Harry"},
        {false, seventy, "Startdate X 2 3 too", "", "", seventy.substr(0, 66)},
    };
    for (const auto& c : cases) {
        Edf reader(oneSignal()
                       .patient(c.patient)
                       .recording("Startdate X 2 3 toolong for an id")
                       .reserved(c.plus ? "EDF+C" : ""));
        const PatientRec& patient = *reader.patientRec();
        SCOPED_TRACE(c.patient);
        EXPECT_TRUE(reader.hasPatientInfo());
        EXPECT_STREQ(patient.id, c.id);
        EXPECT_STREQ(patient.sex, c.sex);
        EXPECT_STREQ(patient.birthDate, c.birthDate);
        EXPECT_EQ(patient.name(), c.name);
        EXPECT_EQ(patient.rawPatient, c.patient);
        EXPECT_STREQ(patient.rawRecording, "Startdate X 2 3 toolong for an id");
        char name[PatientRec::displayNameSize] = "";
        EXPECT_EQ(reader.getPatientName(name), !c.name.empty());
        EXPECT_EQ(name, c.name);
    }
}

TEST(EDF90Reader, AnotherFileInTheSameObjectStartsAfresh) {
    EdfFile first = EdfFile().signal("EDF Annotations", 4).signal("EEG C3", 4).signal("EEG C4", 4);
    first.records(9).reserved("EDF+C").start("01.02.03", "01.00.00").patient("A F 01-JAN-1950 Ann");
    EdfFile second = EdfFile().signal("EEG O1", 2).signal("EEG O2", 4).records(3);
    second.start("05.06.07", "10.00.00").patient("Bob").reserved("EDF+C");
    Edf reader(first);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(startClock(reader), 3600);
        EXPECT_EQ(rawOf(reader, 1, 35, 35).front(), first.sample(2, 35));
        EXPECT_STREQ(reader.patientRec()->birthDate, "01-JAN-1950");
        ASSERT_TRUE(reader.opens(second));
        EXPECT_EQ(startClock(reader), 36000);
        EXPECT_EQ(reader.sampleCount(), 12);
        EXPECT_EQ(rawOf(reader, 0, 5, 5).front(), second.sample(0, 2));
        EXPECT_EQ(rawOf(reader, 1, 5, 5).front(), second.sample(1, 5));
        EXPECT_EQ(reader.patientRec()->name(), "Bob");
        for (const char* text :
             {reader.patientRec()->id, reader.patientRec()->sex, reader.patientRec()->birthDate})
            EXPECT_STREQ(text, "") << "of the patient before";
        ASSERT_TRUE(reader.opens(first));
    }
}

TEST(EDF90Reader, AnInfiniteRateIsKeptAndHarmsNothing) {
    EdfFile file = oneSignal().duration("0");
    Edf reader(file);
    ASSERT_TRUE(reader.isOpen);
    EXPECT_EQ(reader.samplingRate(), infinity);
    EXPECT_EQ(reader.duration(), 0.0);
    EXPECT_EQ(reader.getPagePts(), 4);
    EXPECT_EQ(rawOf(reader, 0, 19, 19).front(), file.sample(0, 19));
}

TEST(EDF90Reader, AChunkIsTheRecordThatHoldsTheByte) {
    struct Exposed : Edf {
        using Edf::Edf;
        using EDF90Reader::getChunk;
    };
    EdfFile file = EdfFile().signal("a", 4).signal("b", 2).records(5);
    Exposed reader(file);
    constexpr int chunkBytes = 4 * 2 * 2; // points, channels, bytes
    for (const auto& [bytePos, bytes, record] : {std::array{0, chunkBytes, 0},
                                                 {chunkBytes - 1, chunkBytes, 0},
                                                 {4 * chunkBytes, chunkBytes, 4},
                                                 {3 * chunkBytes + 5, chunkBytes + 8, 3}}) {
        std::vector<short> frames(12, -99);
        EXPECT_EQ(reader.getChunk(bytePos, frames.data(), bytes), bytes) << bytePos;
        for (std::size_t k = 0; k < 4; ++k) {
            const auto index = static_cast<std::int64_t>(k) + 4 * record;
            EXPECT_EQ(frames[2 * k], file.sample(0, index)) << bytePos;
            EXPECT_EQ(frames[2 * k + 1], file.sample(1, index / 2)) << bytePos;
        }
    }
    std::vector<short> frames(8, -99);
    constexpr long far = std::numeric_limits<long>::max();
    for (const long bytePos : {5L * chunkBytes, -1L * chunkBytes, far, -far - 1})
        EXPECT_EQ(reader.getChunk(bytePos, frames.data(), chunkBytes), 0) << bytePos;
    for (const int bytes : {0, chunkBytes - 1, -chunkBytes})
        EXPECT_EQ(reader.getChunk(0, frames.data(), bytes), 0) << bytes;
    reader.close();
    EXPECT_EQ(reader.getChunk(0, frames.data(), chunkBytes), 0);
    EXPECT_EQ(frames, std::vector<short>(8, -99));
}

// A host may set another count than the file's. Fewer channels are the first ones; of more there is
// nothing to frame.
TEST(EDF90Reader, FramesHoldAsManyChannelsAsTheReaderCounts) {
    EdfFile file = EdfFile().signal("a", 4).signal("b", 4).signal("c", 4).records(5);
    Edf reader(file);
    reader.setChannelCount(2);
    for (const int channel : {0, 1})
        EXPECT_EQ(rawOf(reader, channel, 17, 17).front(), file.sample(channel, 17));
    reader.setChannelCount(4);
    reader.setDefChannelInfo();
    EXPECT_THAT(rawOf(reader, 1, 5, 6), ElementsAre(0, 0));
    reader.setChannelCount(3);
    EXPECT_EQ(rawOf(reader, 2, 17, 17).front(), file.sample(2, 17));
}

TEST(EDF90Reader, TheStoredLengthIsNotMoreThanCanBeAskedFor) {
    const TempDir dir;
    const std::string path = dir.write("long.edf", oneSignal().bytes());
    fs::resize_file(path, 5000000512); // sparse
    EDF90Reader reader;
    ASSERT_TRUE(reader.open(path.c_str()));
    EXPECT_EQ(reader.maxDataIndex(), INT32_MAX);
    EXPECT_EQ(reader.storedSampleCount(), reader.sampleCount());
    readAround(reader);
}

TEST(EDF90Reader, ARecordTooLargeToReadIsTold) {
    const TempDir dir;
    const auto unusable = [&](const EdfFile& made, std::uintmax_t bytes) {
        const std::string path = dir.write("wide.edf", made.bytes());
        fs::resize_file(path, bytes); // sparse
        EDF90Reader reader;
        EXPECT_TRUE(reader.open(path.c_str()));
        readAround(reader);
        return findingsOf(reader, Severity::unusable);
    };
    // Frames of 200 channels, all at the rate of the first.
    EdfFile frames = EdfFile().signal("fast", 0).records(0);
    for (int i = 1; i < 200; ++i)
        frames.signal("slow", 1);
    frames.poke(frames.fieldOffset(216, 8, 0), "4000000 ");
    EXPECT_THAT(unusable(frames, 8100000), HasSubstr("gives 1600000000 bytes"));
    // Texts between a few samples.
    EdfFile record = EdfFile().signal("a", 4).records(0).reserved("EDF+C");
    for (int i = 0; i < 7; ++i)
        record.signal("EDF Annotations", 0);
    for (int i = 1; i <= 7; ++i)
        record.poke(record.fieldOffset(216, 8, i), "99999999");
    EXPECT_THAT(unusable(record, 1500000000), HasSubstr("data record of 1399999994 bytes"));
}

TEST(EDF90Reader, BadInputIsToldInOneSentenceAndSurvived) {
    // Two signals and five records: 768 bytes of header, 80 of data.
    const EdfFile good = EdfFile().signal("a", 4).signal("b", 4).records(5).patient("Secret Name");
    const auto poked = [&](std::size_t at, const char* by) { return EdfFile(good).poke(at, by); };
    const auto cut = [&](std::size_t length) { return EdfFile(good).truncate(length); };
    const struct {
        EdfFile file;
        int code;
        const char* words; ///< of the sentence, or of the findings when it opens
    } cases[] = {
        {poked(252, "0   "), 2, "number of signals (offset 252) is \"0\""},
        {poked(252, "9999"), 2, "header of 9999 signals takes 2560000 bytes"},
        {poked(184, "0       "), 0, "header length (offset 184) is \"0\""},
        {poked(184, "99999999"), 2, "but the file ends after 848 bytes"},
        {poked(184, "848     "), 2, "the file ends with its header of 848 bytes"},
        {poked(688, "-4      "), 2, "(offset 688) is \"-4\""},
        {poked(688, "0       "), 0, "samples per record of signal 1 (offset 688) is \"0\""},
        {poked(688, "99999999"), 2, "(offset 688) is \"99999999\""},
        {poked(244, "0       "), 0,
         "duration of a data record (offset 244) is \"0\", which gives no"},
        {poked(244, "1e-320  "), 0, "which gives no sampling rate"},
        {poked(244, "9e999   "), 0, "more than a year"},
        {cut(0), 2, "the file ends after 0 bytes"},
        {cut(500), 2, "but the file ends after 500 bytes"},
        {cut(768), 2, "no data records"},
        {cut(783), 2, "one takes 16 bytes or more, 15 follow"},
        {EdfFile().signal("a", 1).records(2), 2, "holds 2 samples, at least 3"},
        {EdfFile().signal("a", 1).records(3), 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.words);
        LogCapture log;
        Edf reader(c.file);
        EXPECT_EQ(reader.isOpen, c.code == 0);
        EXPECT_EQ(reader.getLastError(), c.code);
        const std::string sentence = reader.lastErrorText();
        const std::vector<std::string> warnings = log.take(logWarning);
        if (reader.isOpen) {
            EXPECT_EQ(sentence, "");
            EXPECT_THAT(findingsOf(reader, Severity::unusable), HasSubstr(c.words));
        } else {
            EXPECT_THAT(sentence, StartsWith(reader.path + ": "));
            EXPECT_THAT(sentence, HasSubstr(c.words));
            EXPECT_THAT(warnings, Contains(HasSubstr(c.words)));
        }
        EXPECT_THAT(warnings, Each(Not(HasSubstr("Secret"))));
        readAround(reader);
    }
}

// A decimal comma ends the number: all times, or all values, have another scale then.
TEST(EDF90Reader, NumbersThatAreReadInPartAreTold) {
    for (const char* text : {"1,5", "1x"}) {
        Edf reader(oneSignal().duration(text));
        EXPECT_THAT(findingsOf(reader, Severity::unusable),
                    HasSubstr("duration of a data record (offset 244) is \"" + std::string(text) +
                              "\", read as 1: all times would be wrong"));
    }
    EdfFile file = EdfFile().signal("Fp1", 9).signal("F7", 9).physical("-3276,8", "3276.7");
    Edf reader(file.digital("-2048", "2047 x"));
    EXPECT_THAT(
        findingsOf(reader, Severity::warning),
        AllOf(HasSubstr("physical minimum of signal 2"), HasSubstr("\"-3276,8\", read as -3276\n"),
              HasSubstr("digital maximum of signal 2"), HasSubstr("\"2047 x\", read as 2047\n")));
    ASSERT_TRUE(reader.opens(oneSignal().physical("-0,8", "0,8")));
    EXPECT_THAT(findingsOf(reader, Severity::warning), HasSubstr("\"0,8\", read as 0\n"));
    ASSERT_TRUE(reader.opens(oneSignal().duration("1.5")));
    EXPECT_EQ(findingsOf(reader, Severity::warning), "");
}

TEST(EDF90Reader, FindingsAreToldOnceHoweverOftenTheLengthIsTakenAnew) {
    Edf reader(oneSignal().digital("5", "5"));
    const auto count = reader.openFindings().size();
    ASSERT_GT(count, 0U);
    EXPECT_TRUE(reader.readSampleInfo());
    EXPECT_EQ(reader.openFindings().size(), count);
}

TEST(EDF90Reader, SaysAtOpenHowManySecondsAreMissing) {
    const struct {
        const char* reserved;
        std::vector<std::string> onsets;
        std::string words; ///< empty: nothing to say
    } cases[] = {
        {"EDF+C", {"+0.5", "+1.5", "+2.5"}, ""},
        {"EDF+C", {"+0.5", "+1.5", "+9.75"}, "leave gaps of 7.25 s in all"},
        {"EDF+C", {"+0", "+1", "+0"}, "overlap by 2 s in all"},
        {"EDF+C", {"+0", "+1", ""}, ""},
        {"EDF+C", {"+7"}, ""},
        {"", {"+0", "+1", "+9"}, ""},
    };
    for (const auto& c : cases) {
        EdfFile file = EdfFile().reserved(c.reserved).signal("A", 7);
        Edf reader(file.signal("EDF Annotations", 8).onsets(c.onsets));
        ASSERT_TRUE(reader.isOpen);
        EXPECT_THAT(findingsOf(reader, Severity::warning), HasSubstr(c.words));
        EXPECT_EQ(reader.openFindings().empty(), c.words.empty()) << c.onsets.back();
    }
}

TEST(EDF90Reader, ARecordingOfAnnotationsAloneSaysSo) {
    LogCapture log;
    Edf reader(EdfFile().signal("EDF Annotations", 8).reserved("EDF+C").records(3));
    EXPECT_EQ(reader.getLastError(), 2);
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("none of its 1 signals is a channel"));
    EXPECT_EQ(log.take(logWarning).size(), 1U); // the duration, for one, is not to blame
}

TEST(EDF90Reader, InterruptedRecordingsAreRefusedWithTheGivenDiagnostic) {
    LogCapture log;
    Edf reader(oneSignal().reserved("EDF+D"));
    EXPECT_EQ(reader.getLastError(), 3);
    const std::string words =
        "File " + reader.path + " is Interrupted EDF+. This format is not supported.";
    EXPECT_THAT(log.take(logWarning), ElementsAre(words));
    EXPECT_EQ(reader.lastErrorText(), reader.path + ": " + words);
    // No signals at all is found first.
    EXPECT_FALSE(reader.opens(oneSignal().reserved("EDF+D").poke(252, "0   ")));
    EXPECT_EQ(reader.getLastError(), 2);
}

} // namespace
} // namespace kvsig::test
