#include "kvsig/montage/SourceMontage.h"

#include "kvsig/montage/ReferenceAnalysis.h"
#include "kvsig/readers/SyncReader.h"
#include "montage/MontageFixture.h"
#include "support/LogCapture.h"

#include <climits>
#include <gmock/gmock.h>

namespace kvsig {
namespace {

using test::definition;
using test::oldNames;
using test::read;
using test::TestMontage;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int averageBit = G1G2Source::averageBit;

TEST(SourceMontage, WithoutAReaderMakesNothing) {
    SourceMontage montage;
    std::vector<int> channels{0};
    EXPECT_EQ(montage.createSource("C3"), nullptr);
    EXPECT_EQ(montage.createSource(channels), nullptr);
    EXPECT_EQ(montage.createSource(0, 1), nullptr);
    EXPECT_EQ(montage.createMontage("Recorded") + montage.createRecordedMontage(), 0);
    EXPECT_FALSE(montage.isReferential() || montage.changeReference("Cz"));
    EXPECT_TRUE(montage.changeReference(nullptr));
    EXPECT_EQ(montage.indexOfFullName("C3") + montage.idOfChannel2("C3"), -2);
    montage.updateFilters();
    montage.deleteSource(nullptr);
    EXPECT_EQ(montage.source(0), nullptr);
    EXPECT_EQ(montage.avgRef(-1), nullptr);
}

TEST(SourceMontage, RecordedHasARowPerChannelAndTheAveragesThatExist) {
    TestMontage montage(oldNames);
    ASSERT_EQ(montage.createMontage("reCORDed"), 1);
    EXPECT_STREQ(montage.name(), "Recorded");
    EXPECT_THAT(montage.names(), SizeIs(21));
    EXPECT_STREQ(montage.source(20)->name(), "A2-Ref");
    EXPECT_FLOAT_EQ(montage.valueOf(20), 210.0F);
    EXPECT_THAT(montage.averageNames(), ElementsAre("A1A2", "Av17", "Av12"));
    EXPECT_STREQ(montage.ref(), "Ref");
    EXPECT_TRUE(montage.changeReference("Av12"));
    EXPECT_STREQ(montage.ref(), "Ref") << "by its name, whatever its rows have";
    montage.setName("Own");
    EXPECT_TRUE(montage.isReferential());
    EXPECT_STREQ(montage.ref(), "Av12");
    EXPECT_TRUE(montage.changeReference(nullptr));
    EXPECT_STREQ(montage.ref(), "Ref") << "given back to its rows";

    TestMontage fewer({"A1", "A2", "Cz"});
    ASSERT_EQ(fewer.createMontage("Recorded"), 1);
    ASSERT_EQ(fewer.createMontage("Recorded"), 1);
    EXPECT_THAT(fewer.averageNames(), ElementsAre("A1A2"));
    EXPECT_THAT(fewer.names(), SizeIs(3));
    EXPECT_THAT(fewer.unresolved(), IsEmpty()) << "averages on offer are not missed";
}

struct Row {
    const char* defn;
    const char* name;
    float value; ///< at sample 0
};

void expectRows(SourceMontage& montage, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        DataSource* source = montage.createSource(row.defn);
        ASSERT_TRUE(source) << row.defn;
        EXPECT_STREQ(source->name(), row.name);
        EXPECT_FLOAT_EQ(read(*source, 0, 0).front(), row.value) << row.defn;
    }
}

TEST(SourceMontage, DefinitionsAreWhatTheySay) {
    // At sample 0: 10, 20, 30, 40.
    TestMontage montage({"Fp1", "F7", "T3", "Cz"});
    expectRows(montage, {{"Fp1-F7", "Fp1-F7", -10},
                         {"cz-FP1", "Cz-Fp1", 30},
                         {"Fp1", "Fp1-Ref", 10},
                         {"Fp1-ref", "Fp1-Ref", 10},
                         {"-F7", "F7-Ref", 20},
                         {"Fp1-0.5*F7-0.5*T3", "Fp1-_av1", 10 - 10 - 15},
                         {"Cz-2*F7-T3", "Cz-_av2", 40 - 40 - 30},
                         {"Cz-0.25*Fp1-0.25*F7-0.25*T3-0.25*F7-1*Cz", "Cz-_av3", -20},
                         {"Cz-_av1", "Cz-_av1", 40 - 25},
                         {"Gap, nothing else", "        ", 0},
                         {"F7+T3", "F7T3", 25},
                         {"F7:0.5+T3:-2", "F7T3", 10 - 60},
                         {"F7:0.5+T3", "F7T3", 25}}); // one weight for two channels is none
    EXPECT_EQ(montage.sourceCount(), 10);
    EXPECT_EQ(montage.avgRefCount(), 6);
    EXPECT_EQ(definition(*montage.avgRef(3)), "F7+T3");

    const char* unknown[] = {"",        "|",          "-",         "XX",
                             "XX-F7",   "Fp1-XX",     "F7+XX",     "+",
                             "0.5*F7",  "Fp1-0.5*XX", "F7*1+T3*1", "Fp1-F7-T3",
                             "Fp1-*F7", "gap 1",      "F7:1+XX:1", "Fp1-0.5*F7-0.5*T3-XX"};
    for (const char* defn : unknown)
        EXPECT_EQ(montage.createSource(defn), nullptr) << defn;
    EXPECT_EQ(montage.createSource(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_EQ(montage.sourceCount(), 10) << "what fails leaves nothing behind";
    EXPECT_EQ(montage.avgRefCount(), 6);
    EXPECT_THAT(montage.unresolved(), SizeIs(17));
}

TEST(SourceMontage, WhatIsNoArithmeticMayBeALabelWithAStar) {
    TestMontage montage({"C*3", "F7", "X*1", "3*F7"});
    expectRows(montage, {{"C*3", "C*3-Ref", 10},
                         {"C*3-Ref", "C*3-Ref", 10},
                         {"C*3-F7", "C*3-_av1", 10 - 20},
                         {"C*3-X*1", "C*3-_av2", 10 - 30},    // a term without a factor
                         {"F7-3*F7", "F7-_av3", 20 - 3 * 20}, // arithmetic comes first
                         {"F7-C*3-3*F7", "F7-_av4", 20 - 10 - 3 * 20}});
}

// The pair numbers an electrode of its second recording as that recording does.
TEST(SourceMontage, OfAPairOnlyElectrodesOfTheFirstRecordingMakeRows) {
    test::FakeReader first(test::recordingOf({"Fp1", "F7", "Cz"}));
    test::FakeReader second(test::recordingOf({"ECG", "EMG", "F7"}));
    SyncReader pair(&first, &second);
    ASSERT_TRUE(pair.open("scripted"));
    ASSERT_EQ(pair.indexOfG1("EMG"), 1);
    SourceMontage montage;
    montage.setReader(&pair);
    for (const char* defn : {"EMG", "Fp1-EMG", "EMG+Cz", "Fp1-2*EMG", "EMG-2*Fp1"})
        EXPECT_EQ(montage.createSource(defn), nullptr) << defn;
    EXPECT_EQ(montage.sourceCount() + montage.avgRefCount(), 0);
    for (const char* defn : {"Fp1-f7", "F7+Cz", "Fp1-F7Cz", "Fp1-2*Cz"})
        EXPECT_NE(montage.createSource(defn), nullptr) << defn;
    EXPECT_EQ(montage.createRecordedMontage(), 1);
    EXPECT_EQ(montage.sourceCount(), 6);
}

TEST(SourceMontage, RecordedPairsAreFoundAsPairsOnly) {
    test::FakeRecording file = test::recordingOf({"Fp1", "F7", "F7"});
    file.channels[0].grid2 = "F7";
    file.channels[1].grid2 = "T3";
    file.channels[2].grid2 = "C*3";
    TestMontage montage(std::move(file));
    ASSERT_FALSE(montage.recording.isMapReferential());
    expectRows(montage, {{"F7-t3", "F7-T3", 20}, {"f7-C*3", "F7-C*3", 30}});
    for (const char* defn : {"Fp1", "Fp1-T3", "Fp1+F7", "Fp1-0.5*F7"})
        EXPECT_EQ(montage.createSource(defn), nullptr) << defn;
    EXPECT_FALSE(montage.isReferential());
    EXPECT_EQ(montage.createMontage("Recorded"), 1);
    EXPECT_THAT(montage.averageNames(), IsEmpty());
}

TEST(SourceMontage, NumbersAsNamesAreAlwaysChannels) {
    TestMontage montage({"Fp1", "F7"});
    montage.recording.setGridNamesAsNumbers(true);
    expectRows(montage, {{"1-2", "1-2", -10}, {"2", "2-2", 20}, {"2-2", "2-2", 0}});
}

TEST(SourceMontage, SettingsFollowTheFirstBar) {
    TestMontage montage({"Fp1", "F7"});
    montage.add({"Fp1-F7|-7,1,0,3,0.1 sec,70 Hz,1,0,-2.5,8", "Fp1|5,0,0,0,(off),(OFF)",
                 "Fp1-2*F7|0,1,1,9,(off),35", "Fp1|junk|5,1,0,0,1,1"});
    EXPECT_EQ(definition(*montage.source(0)),
              "Fp1-F7|-7,1,0,3,0.1 sec,70 Hz,1,0,-2.500000,8.000000");
    EXPECT_EQ(montage.source(1)->settings().displayValue, 5) << "the older form";
    EXPECT_EQ(montage.source(2)->settings().intValue, 9) << "numeric rows have settings too";
    EXPECT_EQ(montage.source(3)->settings(), SourceSettings()) << "the rest is all after the bar";
}

TEST(SourceMontage, RowsAreFoundByTheirNames) {
    TestMontage montage({"Fp1", "F7", "3"});
    montage.add({"F7-Fp1", "Fp1", "F7"});
    montage.source(0)->setName("fp1x");
    EXPECT_EQ(montage.indexOfName("FP1"), 0);
    EXPECT_EQ(montage.indexOfName("Fp1-"), 1);
    EXPECT_EQ(montage.indexOfName(nullptr), 0) << "every name begins with nothing";
    EXPECT_EQ(montage.indexOfName("70th"), 69) << "row numbers are not held against the count";
    EXPECT_EQ(montage.indexOfName("0"), -1);
    EXPECT_EQ(montage.indexOfName("99999999999"), INT_MAX);
    EXPECT_EQ(montage.indexOfName("zz"), -1);
    EXPECT_EQ(montage.indexOfFullName("FP1-ref"), 1);
    EXPECT_EQ(montage.indexOfFullName("f7"), 2) << "against its recording reference";
    EXPECT_EQ(montage.indexOfFullName("Fp"), -1);
    EXPECT_EQ(montage.indexOfFullName("3"), -1);
}

TEST(CommonReference, IsThatOfTheScalpOrOfTheMajority) {
    const auto rows = [](int count, const char* grid1, const char* grid2) {
        return std::vector<RowGrids>(static_cast<std::size_t>(count), {grid1, grid2});
    };
    const auto of = [](std::vector<RowGrids> all, const std::vector<RowGrids>& more = {}) {
        all.insert(all.end(), more.begin(), more.end());
        return commonReference(all).value_or("none");
    };
    EXPECT_EQ(of(rows(10, "C3", "Cz"), rows(8, "C4", "T4")), "Cz");
    EXPECT_EQ(of(rows(9, "C3", "Cz"), rows(9, "C4", "T4")), "none");
    EXPECT_EQ(of(rows(9, "C4", "T4"), rows(10, "C3", "cZ")), "cZ");
    EXPECT_EQ(of(rows(1, "C3", "A1"), rows(20, "ECG", "Leg")), "A1") << "the scalp comes first";
    EXPECT_EQ(of(rows(2, "ECG", "Leg"), rows(1, "EMG", "Arm")), "Leg") << "no scalp row at all";
    EXPECT_EQ(of({}), "none");
}

TEST(SourceMontage, GapRowsTakeNoPartInReferences) {
    TestMontage montage({"C3", "C4", "F3", "Cz"});
    montage.add({"Gap1", "Gap2", "Gap3", "C3-Cz", "C4-Cz", "C3-F3"});
    EXPECT_TRUE(montage.isReferential()) << "two rows of three";
    EXPECT_STREQ(montage.ref(), "Cz");
    EXPECT_TRUE(montage.changeReference(nullptr));
    EXPECT_THAT(montage.names(),
                ElementsAre("        ", "        ", "        ", "C3-Ref", "C4-Ref", "C3-Ref"));
    EXPECT_FLOAT_EQ(montage.valueOf(0), 0);
    EXPECT_STREQ(montage.ref(), "Ref");
    EXPECT_EQ(definition(*montage.source(2)), "Gap3");
}

TEST(SourceMontage, ANewReferenceMovesTheRowsThatHaveTheRecordingsOwn) {
    TestMontage montage(oldNames);
    montage.add({"Fp1", "F7", "Fp1-F7"});
    montage.addGlobalAvgRefs();
    montage.source(0)->setName("mine");
    EXPECT_FALSE(montage.changeReference("nobody"));
    EXPECT_FALSE(montage.changeReference(""));
    EXPECT_FALSE(montage.changeReference("Ref")) << "no channel of that name";
    EXPECT_TRUE(montage.changeReference("av17"));
    EXPECT_THAT(montage.names(), ElementsAre("Fp1-Av17", "F7-Av17", "Fp1-F7"));
    EXPECT_STREQ(montage.ref(), "Av17");
    // The 17 are channels 3 to 19: their mean is 110.
    EXPECT_FLOAT_EQ(montage.valueOf(0), 10 - 110);
    EXPECT_TRUE(montage.changeReference("Cz"));
    EXPECT_STREQ(montage.source(0)->name(), "Fp1-Av17") << "has another than the recording's own";
    EXPECT_TRUE(montage.changeReference(nullptr));
    EXPECT_TRUE(montage.changeReference("cz"));
    EXPECT_THAT(montage.names(), ElementsAre("Fp1-Cz", "F7-Cz", "Fp1-Cz"));
    EXPECT_FLOAT_EQ(montage.valueOf(0), 10 - 100);
    int id = 0;
    EXPECT_TRUE(montage.isValidReference("AV12", &id));
    EXPECT_EQ(id, averageBit | 2);
    EXPECT_TRUE(montage.isValidReference("f7", &id));
    EXPECT_EQ(id, 2);
}

TEST(SourceMontage, ADeletedAverageIsNoReferenceAndItsPlaceStaysEmpty) {
    TestMontage montage(oldNames);
    montage.addGlobalAvgRefs();
    montage.add({"Fp1-A1A2", "Fp1-Av17", "Fp1-Av12", "Fp1-F7"});
    const int id = montage.idOfChannel2("Av12");
    ASSERT_FLOAT_EQ(montage.valueOf(1), 10 - 110);
    montage.deleteSource(montage.avgRef(1));
    EXPECT_THAT(montage.averageNames(), ElementsAre("A1A2", "deleted", "Av12"));
    EXPECT_EQ(montage.idOfChannel2("Av12"), id);
    EXPECT_EQ(montage.indexOfAvgRef("Av17"), -1);
    EXPECT_EQ(montage.indexOfAvgRef(""), -1);
    EXPECT_THAT(montage.names(), ElementsAre("Fp1-A1A2", "Fp1-Ref", "Fp1-Av12", "Fp1-F7"));
    EXPECT_EQ(definition(*montage.source(1)), "Fp1-Ref");
    EXPECT_FLOAT_EQ(montage.valueOf(1), 10) << "not from the cache";
    montage.add({"F7+F8", "Fp1-2*F7"});
    EXPECT_THAT(montage.averageNames(), ElementsAre("A1A2", "deleted", "Av12", "F7F8", "_av5"));
    montage.deleteSource(nullptr);
    montage.flushCache();
    montage.deleteSource(montage.source(0));
    EXPECT_THAT(montage.names(), ElementsAre("Fp1-Ref", "Fp1-Av12", "Fp1-F7", "Fp1-_av5"));
    G1G2Source foreign(montage.recording, 0, 1);
    montage.deleteSource(&foreign);
    EXPECT_EQ(montage.sourceCount(), 4);
    EXPECT_TRUE(montage.changeReference("Av12"));
    EXPECT_STREQ(montage.source(0)->name(), "Fp1-Av12");
}

TEST(SourceMontage, WrittenOutAndReadBackIsTheSame) {
    TestMontage montage(oldNames);
    montage.addGlobalAvgRefs();
    montage.add({"F7:0.5+T3:-0.25", "Fp1-F7", "Gap1", "C3", "C3-Av17|40,1,0,2,0.1 sec,35 Hz",
                 "Fp1-0.5*F7-2*T3|0,0,1,0,(off),(off),1,1,-5,5", "Cz-A1A2", "Cz-0.5*F7",
                 "Cz-1*F8|1,0,1,0,1e+02 sec,(off),0,0,0,0"});
    TestMontage copy(oldNames);
    for (int i = 0; i < montage.avgRefCount(); ++i) {
        DataSource* average = copy.createSource(definition(*montage.avgRef(i)).c_str());
        ASSERT_TRUE(average);
        average->setName(montage.avgRef(i)->name());
    }
    for (int i = 0; i < montage.sourceCount(); ++i)
        ASSERT_TRUE(copy.createSource(definition(*montage.source(i)).c_str()));
    montage.updateFilters();
    copy.updateFilters();
    EXPECT_EQ(copy.names(), montage.names());
    EXPECT_EQ(copy.averageNames(), montage.averageNames());
    for (int i = 0; i < montage.sourceCount(); ++i) {
        EXPECT_EQ(definition(*copy.source(i)), definition(*montage.source(i)));
        EXPECT_EQ(copy.source(i)->settings(), montage.source(i)->settings());
        EXPECT_EQ(read(*copy.source(i), 300, 700), read(*montage.source(i), 300, 700)) << i;
    }
    EXPECT_EQ(copy.source(3)->filters()->count(), 2);
}

TEST(SourceMontage, MoreChannelsThanAveragesHaveNumbersMakeNone) {
    std::vector<std::string> names{"A1", "A2"};
    for (int i = 2; i < averageBit + 1; ++i)
        names.push_back("X" + std::to_string(i));
    TestMontage crowded(names);
    test::LogCapture log;
    std::vector<int> channels{0, 1};
    EXPECT_EQ(crowded.createSource(channels), nullptr);
    crowded.addGlobalAvgRefs();
    for (const char* defn : {"A1+A2", "X5-A1A2", "X5-0.5*A1"})
        EXPECT_EQ(crowded.createSource(defn), nullptr) << defn;
    EXPECT_THAT(crowded.unresolved(), ElementsAre("A1+A2", "X5-A1A2", "X5-0.5*A1"));
    EXPECT_THAT(log.take(logWarning), SizeIs(1));
    names.pop_back();
    TestMontage full(names);
    expectRows(full, {{"A1+A2", "A1A2", 15}, {"X5-A1A2", "X5-A1A2", 60 - 15}});
}

class OwnMontageReader : public test::FakeReader {
  public:
    using FakeReader::FakeReader;
    int montageCount() override { return 1; }
    const char* montageName(int) override { return "In the file"; }
    void montageApply(SourceMontage& montage, const char*) override {
        montage.createSource("F7-Fp1");
    }
};

TEST(SourceMontage, TheRecordingsOwnMontageComesLast) {
    const test::MontageDirectory files;
    OwnMontageReader reader(test::recordingOf({"Fp1", "F7"}));
    reader.open("scripted");
    SourceMontage montage;
    montage.setReader(&reader);
    EXPECT_EQ(montage.createMontage("in THE file"), 1);
    EXPECT_EQ(montage.sourceCount(), 1);
    files.ini("[In the file]\nFp1=\nF7=\n");
    EXPECT_EQ(montage.createMontage("In the file"), 1);
    EXPECT_EQ(montage.sourceCount(), 2);
    EXPECT_EQ(montage.createMontage("Nowhere"), 0);
    EXPECT_STREQ(montage.name(), "Nowhere");
    EXPECT_EQ(montage.sourceCount(), 0);
}

TEST(SourceMontage, AveragesEndWhereTheirIdsDo) {
    TestMontage montage({"Fp1"});
    std::vector<int> channels{0};
    for (int i = 0; i < SourceMontage::maxAverages; ++i)
        ASSERT_TRUE(montage.createSource(channels));
    EXPECT_EQ(montage.createSource(channels), nullptr);
    EXPECT_EQ(montage.createSource("Fp1+Fp1"), nullptr);
    EXPECT_EQ(montage.createSource("Fp1-2*Fp1"), nullptr);
}

} // namespace
} // namespace kvsig
