#include "support/Command.h"
#include "support/EdfFile.h"
#include "tool/Rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kvsig::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::ordered_json;

class MontageCommand : public testing::Test {
  protected:
    void SetUp() override {
        EdfFile file;
        for (const char* label : {"EEG Fp1-Ref", "EEG F7-Ref", "EEG T3-Ref", "EEG Cz-Ref"})
            file.signal(label, 4);
        file.signal("Temp", 4).units("DegC").physical("34", "40").records(3);
        file.samples([](int signal, std::int64_t i) {
            return static_cast<std::int32_t>((signal + 1) * 100 + i);
        });
        file.writeTo(dir.file("a.edf"));
        dir.write("own.ini", "[Own]\nF7-T3=second\nFp1-F7=first\nGap1=\nC3-C4=\nFp1+Cz=two\n"
                             "F7-two=\n[Temperatures]\nTemp-Cz=\n");
    }
    CommandResult run(const std::string& arguments) { return runCommand(dir, arguments); }
    TempDir dir;
};

TEST_F(MontageCommand, ListsMontagesAndTheirSources) {
    const Json list = Json::parse(run("montage a.edf --montage-file own.ini --json").out);
    EXPECT_EQ(list["montages"][0], "Recorded");
    EXPECT_EQ(list["montages"][1], "Own");
    EXPECT_THAT(run("montage a.edf").out, AllOf(HasSubstr("Double banana"), Not(HasSubstr("Own"))));
    const CommandResult own = run("montage a.edf --montage own --montage-file own.ini --json");
    ASSERT_EQ(own.exitCode, 0) << own.err;
    EXPECT_THAT(own.err,
                HasSubstr("1 row left out, the recording lacks electrodes of it: C3-C4\n"));
    const Json montage = Json::parse(own.out)["montage"];
    EXPECT_EQ(montage["missing"], Json({"C3-C4"}));
    EXPECT_EQ(montage["sources"][0]["name"], "second");
    EXPECT_EQ(montage["sources"][1]["definition"], "Fp1-F7");
    EXPECT_EQ(montage["sources"][2]["gap"], true);
    EXPECT_EQ(montage["sources"][3]["grid2"], "two");
    const CommandResult unknown = run("montage a.edf --montage Owm --montage-file own.ini");
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_THAT(unknown.err, AllOf(HasSubstr("\"Owm\" is not known"), HasSubstr("Own")));
    EXPECT_THAT(
        run("plot a.edf --montage 'Referential A1A2' -o x.png").err,
        AllOf(HasSubstr("lacks electrodes of all its rows: Fp1-A1A2"), Not(HasSubstr("known"))));
    EXPECT_THAT(run("montage a.edf --montage x --montage-file gone").err,
                HasSubstr("no such file"));
}

TEST_F(MontageCommand, ExportsAndDrawsItsRows) {
    const std::string own = "a.edf --montage Own --montage-file own.ini --to 0.5";
    const CommandResult table = run("export " + own);
    ASSERT_EQ(table.exitCode, 0) << table.err;
    // Steps are 0.1 uV; a gap is no column.
    EXPECT_THAT(table.out, StartsWith("time,second,first,F7-two\n0,-10,-10,-5\n"));
    ASSERT_EQ(run("plot " + own + " -o page.svg --notch 1").exitCode, 1); // 2 Hz is half the rate
    ASSERT_EQ(run("plot " + own + " -o page.svg --low-filter 0.5").exitCode, 0);
    const CommandResult mixed =
        run("export a.edf --montage Temperatures --montage-file own.ini --to 1");
    EXPECT_EQ(mixed.exitCode, 1);
    EXPECT_THAT(mixed.err, HasSubstr("differ in units or scale"));
    EXPECT_EQ(run("export a.edf --montage Own --channels Fp1").exitCode, 2);
}

TEST_F(MontageCommand, ReferencesAreChanged) {
    const CommandResult table = run("export a.edf --reference Cz --to 0.25");
    ASSERT_EQ(table.exitCode, 0) << table.err;
    EXPECT_THAT(table.out, StartsWith("time,Fp1-Cz,F7-Cz,T3-Cz,Cz-Cz,Temp"));
    EXPECT_THAT(table.out, HasSubstr("\n0,-30,-20,-10,0,"));
    const CommandResult bipolar =
        run("montage a.edf --montage Own --montage-file own.ini --reference Cz");
    EXPECT_THAT(bipolar.err, HasSubstr("changes no row"));
    const CommandResult unknown = run("export a.edf --reference Pz");
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_THAT(unknown.err, HasSubstr("--reference Pz is none here"));
}

// What the montage defines as a difference stays one.
TEST_F(MontageCommand, ReferencesLeaveBipolarRowsAlone) {
    dir.write("own.ini", "[Own]\nFp1-Cz=\nF7-Cz=\nT3-Cz=\nFp1-F7=bipolar\nTemp=\n");
    const CommandResult table =
        run("export a.edf --montage Own --montage-file own.ini --reference T3 --to 0.25");
    ASSERT_EQ(table.exitCode, 0) << table.err;
    EXPECT_THAT(table.out,
                StartsWith("time,Fp1-T3,F7-T3,T3-T3,bipolar,Temp-Ref\n0,-20,-10,0,-10,"));
    EXPECT_THAT(table.err, HasSubstr("left as they are: Temp-Ref"));
    const CommandResult again = run("montage a.edf --montage Own --montage-file own.ini "
                                    "--reference Cz --json");
    EXPECT_THAT(again.err, HasSubstr("changes no row"));
    EXPECT_EQ(Json::parse(again.out)["montage"]["reference"], "Cz");
}

TEST_F(MontageCommand, SaysWhenNothingOfAMontageIsThere) {
    dir.write("own.ini", "[Own]\nGap1=\nP3-P4=\n[Empty]\nGap1=\n");
    const std::string own = "plot a.edf -o x.svg --montage-file own.ini --montage ";
    EXPECT_THAT(run(own + "Own").err, HasSubstr("lacks electrodes of all its rows: P3-P4"));
    EXPECT_THAT(run(own + "Empty").err, HasSubstr("has no rows"));
    dir.write("broken.xml", "<Templates><Template");
    EXPECT_THAT(run("montage a.edf --montage X --montage-file broken.xml").err,
                HasSubstr("broken.xml"));
    EXPECT_EQ(run("montage a.edf --montage-file gone").exitCode, 1);
}

TEST_F(MontageCommand, SaysWhatIsLeftOutByItsKind) {
    dir.write("own.ini", "[Own]\nFp1=\nC3-C4=\nF3=\nP3+P4=\n|=\n-|1,2=\n");
    EXPECT_THAT(
        run("montage a.edf --montage Own --montage-file own.ini").err,
        AllOf(HasSubstr("2 rows left out, the recording lacks electrodes of them: C3-C4, F3\n"),
              HasSubstr("1 average left out, the recording lacks electrodes of it: P3+P4\n"),
              HasSubstr("2 definitions left out, which do not parse: \"|\", \"-|1,2\"\n")));
    dir.write("own.ini", "[Own]\nP3+P4=\n");
    EXPECT_THAT(run("montage a.edf --montage Own --montage-file own.ini").err,
                AllOf(HasSubstr("has no rows\n"), HasSubstr("1 average left out")));
}

// Rows that bring filters of their own keep them; the others take the options'.
TEST_F(MontageCommand, OwnFiltersOfARowStay) {
    dir.write("own.ini", "[Own]\nFp1-F7|0,0,0,0,0.1 sec,(off),0,0,0,0=own\nFp1-F7=plain\n");
    const std::string own = "export a.edf --montage Own --montage-file own.ini --to 1 ";
    const CommandResult plain = run(own);
    EXPECT_THAT(plain.out, HasSubstr("-10\n0.25"));
    const CommandResult table = run(own + "--low-filter 0.5");
    ASSERT_EQ(table.exitCode, 0) << table.err;
    const std::string lastOwn = table.out.substr(table.out.rfind("0.75,"));
    EXPECT_EQ(plain.out.substr(plain.out.rfind("0.75,")).substr(0, 12), lastOwn.substr(0, 12));
}

// "." is a gap: as the montage has them, but for those of groups that are left out as a whole.
TEST_F(MontageCommand, GapsAreDrawnAsTheyStand) {
    const struct {
        const char* keys;
        const char* drawn;
    } montages[] = {{"Gap1=\nGap2=\nFp1=a\nGap3=\nGap4=\nF7=b\nGap5=\n", "..a..b."},
                    {"C3=\nGap1=\nFp1=a\nGap2=\nC3=\nTemp-Cz=\nGap3=\nF7=b\nGap4=\nC4=\n", "a.b"},
                    {"Fp1=a\nC3=\nGap1=\nGap2=\nC3=\nF7=b\nP3+P4=\n", "a..b"},
                    {"Gap1=\nC3=\nGap2=\nF7=b\n", ".b"}};
    const auto recording = tool::openUsableRecording(dir.file("a.edf"), 0);
    ASSERT_TRUE(recording);
    for (const auto& montage : montages) {
        dir.write("own.ini", std::string("[Own]\n") + montage.keys);
        tool::SignalOptions options;
        options.montage = {"Own", dir.file("own.ini"), ""};
        tool::Rows rows(*recording);
        ASSERT_TRUE(rows.select(options, true));
        std::string drawn;
        for (const tool::Row& row : rows.rows())
            drawn += row.gap ? "." : row.name;
        EXPECT_EQ(drawn, montage.drawn);
        EXPECT_EQ(run("plot a.edf --montage Own --montage-file own.ini -o x.svg").exitCode, 0);
    }
}

} // namespace
} // namespace kvsig::test
