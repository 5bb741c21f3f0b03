#include "kvsig/readers/EdfInspection.h"

#include "kvsig/readers/EdfOnset.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"
#include "support/Testing.h"

namespace kvsig::test {
namespace {

class EdfInspection : public testing::Test {
  protected:
    static std::vector<std::string> odditiesIn(const std::string& path, int sampleBytes = 2) {
        std::vector<std::string> texts;
        for (const OpenFinding& finding : edf::inspect(path, sampleBytes))
            texts.push_back(finding.text);
        return texts;
    }
    std::vector<std::string> oddities(const EdfFile& file, int sampleBytes = 2) {
        return odditiesIn(dir.write("x", file.bytes()), sampleBytes);
    }
    std::string severityOf(const EdfFile& file, const std::string& words) {
        for (const OpenFinding& finding : edf::inspect(dir.write("x", file.bytes()), 2))
            if (finding.text.find(words) != std::string::npos)
                return finding.severity == OpenFinding::Severity::warning ? "warning" : "note";
        return "";
    }
    // Two seconds a record.
    static EdfFile timed(std::vector<std::string> onsets) {
        EdfFile file = EdfFile().reserved("EDF+C").patient("X X X X").duration("2").signal("A", 4);
        return file.signal("EDF Annotations", 8).onsets(std::move(onsets));
    }
    TempDir dir;
    EdfFile clean = EdfFile().signal("EEG C3-A2", 4).signal("Temp", 2).records(3);
};

TEST_F(EdfInspection, IsQuietOnCleanFiles) {
    EXPECT_THAT(oddities(clean), IsEmpty());
    EXPECT_THAT(oddities(EdfFile().bdf().signal("a", 4).records(3), 3), IsEmpty());
    EXPECT_THAT(edf::inspect(dir.file("absent"), 2), IsEmpty());
}

TEST_F(EdfInspection, TellsCountsAndLengthsThatDisagree) {
    EXPECT_THAT(oddities(EdfFile(clean).poke(236, "-1      ")),
                ElementsAre(AllOf(HasSubstr("(offset 236) is \"-1\""), HasSubstr("not closed"),
                                  HasSubstr("holds 3"))));
    EXPECT_THAT(oddities(EdfFile(clean).poke(236, "5       ")),
                ElementsAre(HasSubstr("is \"5\", but the data holds 3: the end is missing")));
    EXPECT_THAT(oddities(EdfFile(clean).truncate(clean.bytes().size() - 1)),
                ElementsAre(HasSubstr("holds 2 and 11 bytes of a record of 12")));
    EXPECT_THAT(oddities(EdfFile(clean).poke(236, "2       ")),
                ElementsAre(HasSubstr("is \"2\", but the data holds 3")));
}

TEST_F(EdfInspection, TellsRangesAndSamplesOutsideThem) {
    EdfFile file = EdfFile().signal("A", 4).physical("100", "-100").signal("B", 4);
    file.digital("5", "5").signal("C", 4).physical("175921", "175946").records(2);
    EXPECT_THAT(oddities(file),
                AllOf(Contains(HasSubstr("physical range of signal 1 (\"A\") is 100 to -100, "
                                         "reversed")),
                      Contains(HasSubstr("digital range of signal 2 (\"B\") is 5 to 5, empty")),
                      Contains(HasSubstr("175921 to 175946, far from zero")),
                      Contains(HasSubstr("of 1 signals lie outside their digital range, the "
                                         "first in \"B\""))));
}

TEST_F(EdfInspection, WarnsOfRangesThatSpoilTheValuesOfDataSignals) {
    const struct {
        const char *low, *high, *words;
    } cases[] = {{"?", "100", "not two numbers"}, {"5", "5", "empty"}, {"9", "5", "reversed"}};
    for (const auto& c : cases) {
        EXPECT_EQ(severityOf(EdfFile().signal("A", 4).physical(c.low, c.high), c.words), "warning");
        EdfFile annotated = EdfFile().reserved("EDF+C").signal("A", 4);
        annotated.signal("EDF Annotations", 4).physical(c.low, c.high);
        EXPECT_EQ(severityOf(annotated, c.words), "note") << c.words;
    }
    EXPECT_EQ(severityOf(EdfFile().signal("A", 4).physical("1001", "1002"), "far"), "note");
}

TEST_F(EdfInspection, TellsEachGapAndOverlap) {
    EXPECT_THAT(oddities(timed({"+0.25", "+2.25", "+4.25"})),
                ElementsAre("the first data record begins 0.250000 s after the start time"));
    EXPECT_THAT(oddities(timed({"+0", "+2", "+10", "+12", "+13", "+15", "+18.5"})),
                ElementsAre("a gap of 6 s at 4 s, before data record 3",
                            "data record 5 overlaps by 1 s with what ends at 14 s",
                            "a gap of 1.5 s at 17 s, before data record 7"));
    std::vector<std::string> many{"+0"};
    for (int i = 1; i <= 25; ++i)
        many.push_back("+" + std::to_string(3 * i));
    many.insert(many.end(), {"+75", "+75"});
    const std::vector<std::string> texts = oddities(timed(many));
    ASSERT_EQ(texts.size(), 21U);
    EXPECT_EQ(texts[19], "a gap of 1 s at 59 s, before data record 21");
    EXPECT_EQ(texts[20], "5 more gaps and 2 more overlaps between data records");
}

// Such a record takes its time like any other.
TEST_F(EdfInspection, ARecordWithoutAnOnsetMakesNoGap) {
    EXPECT_THAT(oddities(timed({"+0", "", "", "+6"})),
                ElementsAre("2 of 4 data records have no onset in their annotation signal"));
    EXPECT_THAT(oddities(timed({"+0", "", "+9"})),
                Contains("a gap of 5 s at 4 s, before data record 3"));
}

// A third of a second has lost 1/3 of a microsecond, as has every record behind it.
TEST_F(EdfInspection, DurationsOfFewDecimalsMakeNoGaps) {
    std::vector<std::string> onsets(3001);
    onsets.front() = "+0";
    onsets.back() = "+1000";
    EXPECT_THAT(oddities(timed(onsets).duration("0.333333")), ElementsAre(HasSubstr("no onset")));
    EXPECT_THAT(oddities(timed(onsets).duration("0.333")), Contains(HasSubstr("a gap of 1 s")));
}

TEST_F(EdfInspection, WarnsOfAnnotationsThatAreShownAsChannels) {
    const std::string shown =
        "signal 2 (\"EDF Annotations\") holds texts, but is shown as a channel";
    const EdfFile file = EdfFile().signal("A", 4).signal("EDF Annotations", 4).onsets({"+0"});
    EXPECT_THAT(oddities(file),
                ElementsAre(AllOf(HasSubstr(shown), HasSubstr("declares no EDF+"))));
    EXPECT_EQ(severityOf(file, shown), "warning");
    EXPECT_EQ(severityOf(EdfFile(file).reserved("EDF+C"), shown), "");
    EXPECT_EQ(severityOf(EdfFile(file).reserved("BDF+C"), shown), "warning");
}

TEST_F(EdfInspection, NotesAnAnnotationSignalInFrontOfTheChannels) {
    EdfFile file = EdfFile().reserved("EDF+C").patient("X X X X").signal("EDF Annotations", 8);
    file.signal("A", 4).onsets({"+0", "+1"});
    EXPECT_THAT(oddities(file), ElementsAre("signal 1 (\"EDF Annotations\") holds texts and is no "
                                            "channel: channel #0 is signal 2"));
}

TEST_F(EdfInspection, NotesPatientsOfMoreOrFewerThanFourWords) {
    for (const auto& [patient, count] :
         {std::pair("X X X X", 0), {"X X X", 1}, {"X F X  X 3C 54", 1}})
        for (const char* kind : {"EDF+C", "EDF", ""}) {
            const auto found = oddities(EdfFile(clean).patient(patient).reserved(kind));
            EXPECT_EQ(std::count_if(found.begin(), found.end(),
                                    [](const std::string& text) {
                                        return text.starts_with("patient identification");
                                    }),
                      *kind ? count : 0)
                << patient << " in " << kind;
            EXPECT_THAT(found, Each(Not(HasSubstr("3C")))) << "never shown";
        }
}

TEST_F(EdfInspection, NotesASingleRecordOfOddLength) {
    EXPECT_THAT(
        oddities(EdfFile(clean).records(1).duration("9.59375")),
        ElementsAre("duration of the only data record (offset 244) is \"9.59375\", no whole "
                    "number of seconds"));
    EXPECT_THAT(oddities(EdfFile(clean).records(2).duration("9.59375")), IsEmpty());
    EXPECT_THAT(oddities(EdfFile(clean).records(1).duration("2184")), IsEmpty());
}

TEST_F(EdfInspection, NotesAHeaderThatIsLongerThanItsSignals) {
    EXPECT_THAT(oddities(EdfFile(clean).poke(184, "1024    ")),
                Contains(HasSubstr("header length (offset 184) is \"1024\", but "
                                   "the header of 2 signals ends after 768")));
}

TEST_F(EdfInspection, SaysWhenRecordsAreTooLargeToLookAt) {
    EdfFile file = EdfFile().signal("A", 4).signal("B", 4);
    file.poke(file.fieldOffset(216, 8, 0), "9999999999999999");
    const std::string path = dir.write("x", file.bytes());
    fs::resize_file(path, 768 + 4 * 99999999LL);
    EXPECT_THAT(odditiesIn(path),
                ElementsAre(HasSubstr("a data record takes 399999996 bytes, too many")));
}

TEST_F(EdfInspection, TellsAnEarlyWriter) {
    std::string bytes = clean.bytes();
    bytes.erase(87, 1); // the patient identification has lost a byte
    EXPECT_THAT(odditiesIn(dir.write("x", bytes)),
                Contains(HasSubstr("stand one byte early: read so, header length 768 and 2 "
                                   "signals agree")));
}

TEST(EdfOnset, IsASignedNumberBeforeTheFirstMark) {
    using namespace std::string_view_literals;
    EXPECT_EQ(edf::recordOnset("+0\x14\x14\0"sv), 0.0);
    EXPECT_EQ(edf::recordOnset("-1.5\x14\x14"sv), -1.5);
    EXPECT_EQ(edf::recordOnset("+149.3296875\x14"sv), 149.3296875);
    for (const std::string_view none : {""sv, "0\x14"sv, "+1"sv, "+x\x14"sv,
                                        "+1\x15"
                                        "2\x14"sv,
                                        "\0+1\x14"sv})
        EXPECT_EQ(edf::recordOnset(none), std::nullopt) << none;
}

} // namespace
} // namespace kvsig::test
