#include "support/Command.h"
#include "support/EdfFile.h"
#include "tool/Rows.h"
#include "tool/plot/PageCaption.h"

#include <nlohmann/json.hpp>

namespace kvsig::test {
namespace {

using Json = nlohmann::ordered_json;

class MontageCommand : public CommandTest {
  protected:
    void SetUp() override {
        EdfFile file;
        for (const char* label : {"EEG Fp1-Ref", "EEG F7-Ref", "EEG T3-Ref", "EEG Cz-Ref"})
            file.signal(label, 4);
        file.signal("Temp", 4).units("DegC").physical("34", "40").records(3);
        file.samples([](int signal, std::int64_t i) { // in steps of 0.1 uV
            return static_cast<std::int32_t>(signal * 100LL + 100 + i);
        });
        file.writeTo(dir.file("a.edf"));
        dir.write("own.ini", "[Own]\nF7-T3=second\nFp1-F7=first\nGap1=\nC3-C4=\nFp1+Cz=two\n"
                             "F7-two=\n[Temperatures]\nTemp-Cz=\n");
    }
    // A command on the recording with the montages of own.ini, or with these rows as "Own".
    CommandResult own(const std::string& arguments) const {
        return command(arguments + " --montage-file own.ini a.edf");
    }
    CommandResult withRows(const std::string& rows, const std::string& arguments) const {
        dir.write("own.ini", "[Own]\n" + rows);
        return own(arguments + " --montage Own");
    }
};

TEST_F(MontageCommand, ListsMontagesAndTheirSources) {
    const Json list = Json::parse(own("montage --json").out);
    EXPECT_EQ(list["montages"][0], "Recorded");
    EXPECT_EQ(list["montages"][1], "Own");
    EXPECT_THAT(command("montage a.edf").out,
                AllOf(HasSubstr("Double banana"), Not(HasSubstr("Own"))));
    const CommandResult run = own("montage --montage own --json");
    EXPECT_THAT(run.err,
                HasSubstr("1 row left out, the recording lacks electrodes of it: C3-C4\n"));
    const Json montage = Json::parse(run.out)["montage"];
    EXPECT_EQ(montage["missing"], Json({"C3-C4"}));
    EXPECT_EQ(montage["sources"][0]["name"], "second");
    EXPECT_EQ(montage["sources"][1]["definition"], "Fp1-F7");
    EXPECT_EQ(montage["sources"][2]["gap"], true);
    EXPECT_EQ(montage["sources"][3]["grid2"], "two");
}

TEST_F(MontageCommand, ExportsAndDrawsItsRows) {
    const CommandResult table = own("export --montage Own --to 0.5");
    ASSERT_EQ(table.exitCode, 0) << table.err;
    EXPECT_THAT(table.out, StartsWith("time,second,first,F7-two\n0,-10,-10,-5\n")); // no gap
    ASSERT_EQ(own("plot --montage Own -o page.svg --notch 1").exitCode, 1); // 2 Hz is half the rate
    ASSERT_EQ(own("plot --montage Own -o page.svg --low-filter 0.5").exitCode, 0);
    const CommandResult mixed = own("export --montage Temperatures --to 1");
    EXPECT_EQ(mixed.exitCode, 1);
    EXPECT_THAT(mixed.err, HasSubstr("differ in units or scale"));
    EXPECT_EQ(command("export a.edf --montage Own --channels Fp1").exitCode, 2);
}

// What the montage defines as a difference stays one.
TEST_F(MontageCommand, ReferencesAreChangedButForBipolarRows) {
    const CommandResult recorded = command("export a.edf --reference Cz --to 0.25");
    ASSERT_EQ(recorded.exitCode, 0) << recorded.err;
    EXPECT_THAT(recorded.out, StartsWith("time,Fp1-Cz,F7-Cz,T3-Cz,Cz-Cz,Temp"));
    EXPECT_THAT(recorded.out, HasSubstr("\n0,-30,-20,-10,0,"));
    const Json told = Json::parse(command("montage a.edf --reference Cz --json").out)["montage"];
    EXPECT_EQ(told["name"], "Recorded, re-referenced");
    EXPECT_EQ(told["reference"], "Cz");
    EXPECT_THAT(own("montage --montage Own --reference Cz").err, HasSubstr("changes no row"));
    const CommandResult unknown = command("export a.edf --reference Pz");
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_THAT(unknown.err, HasSubstr("--reference Pz is none here"));

    const CommandResult table = withRows("Fp1-Cz=\nF7-Cz=\nT3-Cz=\nFp1-F7=bipolar\nTemp=\n",
                                         "export --reference T3 --to 0.25");
    ASSERT_EQ(table.exitCode, 0) << table.err;
    EXPECT_THAT(table.out,
                StartsWith("time,Fp1-T3,F7-T3,T3-T3,bipolar,Temp-Ref\n0,-20,-10,0,-10,"));
    EXPECT_THAT(table.err, HasSubstr("left as they are: Temp-Ref"));
    const CommandResult again = own("montage --montage Own --reference Cz --json");
    EXPECT_THAT(again.err, HasSubstr("changes no row"));
    EXPECT_EQ(Json::parse(again.out)["montage"]["reference"], "Cz");
}

// Channels that are pairs themselves: an electrode's own potential is in none of them.
TEST_F(MontageCommand, RecordedPairsAreNotTakenForElectrodes) {
    EdfFile file;
    for (const char* label : {"EEG Fp1-F7", "EEG F7-T3", "EEG T3-T5", "EEG C3-T5"})
        file.signal(label, 4);
    for (const char* label : {"Temp", "Sat"})
        file.signal(label, 4).units(label);
    file.records(3).writeTo(dir.file("pairs.edf"));
    const auto exported = [this](const std::string& channels) {
        return command("export pairs.edf --to 0.25 --channels '" + channels + "'");
    };
    for (const char* electrodes : {"Fp1-T3", "Fp1-F7+T3", "F7+T3", "#0-T3"})
        EXPECT_THAT(exported(electrodes).err, HasSubstr("recorded against different electrodes"))
            << electrodes;
    for (const char* sound : {"Fp1", "Fp1-F7,T3-C3", "#0-#1", "Fp1-F7-T3-T5"})
        EXPECT_EQ(exported(sound).exitCode, 0) << sound;
    EXPECT_THAT(exported("Temp-Sat").err, HasSubstr("Sat (Sat) and Temp (Temp) differ in units"));
    for (const char* use : {"export", "plot -o p.svg", "montage --montage Recorded --json"}) {
        const CommandResult moved = command(std::string(use) + " pairs.edf --reference F7");
        EXPECT_EQ(moved.exitCode, 1) << use;
        EXPECT_THAT(moved.err, HasSubstr("no reference can take the place of theirs")) << use;
    }
    const Json told =
        Json::parse(command("montage gone.edf a.edf --json --montage Average --reference Q").out);
    EXPECT_THAT(told[0]["error"].get<std::string>(), HasSubstr("no such file"));
    EXPECT_THAT(told[1]["error"].get<std::string>(), HasSubstr("electrodes of all its rows"));
}

// The scalp has one reference, so the recording is a referential one, but other channels have
// theirs.
TEST_F(MontageCommand, ChannelsOfOtherReferencesAreNotTakenForElectrodes) {
    const auto record = [this](const char* name, const std::vector<std::string>& labels) {
        EdfFile file;
        for (const std::string& label : labels)
            file.signal(label, 4);
        file.samples([](int signal, std::int64_t) { return 100 * (signal + 1); });
        file.writeTo(dir.file(name));
    };
    record("mix.edf", {"Fp1-REF", "F3-REF", "Cz-REF", "A1-A2", "M1-M2", "A2"});
    dir.write("own.ini", "[Own]\nFp1-A1=\nFp1-F3=\nA1-A2=\nF3+M1=two\nFp1-two=\nFp1-0.5*A1=\n"
                         "Fp1-A2=\n");
    const CommandResult rows =
        command("export mix.edf --montage Own --montage-file own.ini --to 0.25");
    EXPECT_EQ(rows.out, "time,Fp1-F3,A1-A2,Fp1-A2\n0,-10,40,-50\n"); // A2 has the scalp's
    for (const char* row : {"Fp1-A1", "Fp1-two", "Fp1-0.5*A1"})
        EXPECT_THAT(rows.err, HasSubstr(std::string(row) + " is left out: Fp1-REF and ")) << row;
    const CommandResult told = command("montage mix.edf --montage Own --montage-file own.ini");
    EXPECT_THAT(told.out, HasSubstr("Fp1-two"));
    EXPECT_THAT(told.err, HasSubstr("Fp1-two is left out of exports and pictures: Fp1-REF and "));
    EXPECT_THAT(told.err, Not(HasSubstr("Fp1-F3")));
    const CommandResult moved = command("export mix.edf --reference Cz --to 0.25");
    EXPECT_EQ(moved.out, "time,Fp1-Cz,F3-Cz,Cz-Cz,A1-A2,M1-M2,A2-Cz\n0,-20,-10,0,40,50,30\n");
    EXPECT_THAT(moved.err, HasSubstr("the same reference as Cz, left as they are: A1-A2, M1-M2\n"));
    EXPECT_THAT(command("montage mix.edf --reference A1A2").err,
                HasSubstr("left as they are: Fp1-REF, F3-REF, Cz-REF, A1-A2, M1-M2, A2"));

    record("plain.edf", {"Fp1", "F3", "Cz", "A1-M1", "A2-M2", "ECG1-ECG2"});
    for (const char* mixed : {"Fp1-A1+A2", "Fp1-A1A2", "Fp1+A1+A2", "A1+Fp1+A2", "Fp1-ECG1"})
        EXPECT_THAT(command(std::string("export plain.edf --channels ") + mixed).err,
                    HasSubstr("are not known to have one reference; "))
            << mixed;
    EXPECT_EQ(command("export plain.edf --to 0.25 --channels Fp1-F3,Fp1-A1-M1,A1,F3+Cz").out,
              "time,Fp1-F3,Fp1-A1-M1,A1-M1,F3+Cz\n0,-10,-30,40,25\n");
    const CommandResult ears = command("export plain.edf --montage 'Referential A1A2'");
    EXPECT_EQ(ears.exitCode, 1);
    EXPECT_THAT(ears.err, HasSubstr("Fp1-A1A2 is left out: Fp1 and A1-M1 are not known"));
    EXPECT_THAT(command("montage plain.edf --montage Recorded").out,
                HasSubstr("montage Recorded, against a common reference without a name\n"));
    // Each of a pair has its own.
    EXPECT_THAT(command("montage 'a.edf*plain.edf' --reference F7").err,
                HasSubstr("as F7, left as they are: Fp1, F3, Cz, A1-M1, A2-M2\n"));
}

// A page is called against a reference only when its rows are, whatever a bipolar row subtracts.
TEST_F(MontageCommand, TitlesNameTheReferenceOfTheRows) {
    const auto recording = tool::openUsableRecording(dir.file("a.edf"), 0);
    ASSERT_TRUE(recording);
    const auto title = [&](const tool::MontageChoice& choice) {
        tool::SignalOptions options;
        options.montage = choice;
        tool::Rows rows(*recording);
        EXPECT_TRUE(rows.select(options, true));
        return tool::titleText(*recording, choice, rows.reference());
    };
    EXPECT_EQ(title({"", "", "F7"}), "a.edf, against F7");
    EXPECT_EQ(title({"Own", dir.file("own.ini"), "F7"}), "a.edf, Own");
}

// Numbers of channels from 4096 on have the bit that marks averages where there are fewer.
TEST_F(MontageCommand, RowsOfVeryManyChannelsAreLookedAtAsPairs) {
    EdfFile file;
    for (int i = 0; i < 4097; ++i)
        file.signal("S" + std::to_string(i), 3);
    file.units("DegC").physical("34", "40").writeTo(dir.file("many.edf"));
    dir.write("own.ini", "[Own]\nS1-S4096=\n");
    EXPECT_THAT(command("export many.edf --montage Own --montage-file own.ini").err,
                HasSubstr("S1-S4096 is left out: S4096 (DegC) and S1 (uV) differ in units"));
}

TEST_F(MontageCommand, SaysWhatIsLeftOutByItsKind) {
    EXPECT_THAT(
        withRows("Fp1=\nC3-C4=\nF3=\nP3+P4=\n|=\n-|1,2=\n", "montage").err,
        AllOf(HasSubstr("2 rows left out, the recording lacks electrodes of them: C3-C4, F3\n"),
              HasSubstr("1 average left out, the recording lacks electrodes of it: P3+P4\n"),
              HasSubstr("2 definitions left out, which do not parse: \"|\", \"-|1,2\"\n")));
    EXPECT_THAT(withRows("P3+P4=\n", "montage").err,
                AllOf(HasSubstr("has no rows\n"), HasSubstr("1 average left out")));
    EXPECT_THAT(withRows("Gap1=\nP3-P4=\n", "plot -o x.svg").err,
                HasSubstr("lacks electrodes of all its rows: P3-P4"));
    EXPECT_THAT(withRows("Gap1=\n", "plot -o x.svg").err, HasSubstr("has no rows"));
    EXPECT_THAT(
        command("plot a.edf --montage 'Referential A1A2' -o x.png").err,
        AllOf(HasSubstr("lacks electrodes of all its rows: Fp1-A1A2"), Not(HasSubstr("known"))));
    const CommandResult unknown = own("montage --montage Owm");
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_THAT(unknown.err, AllOf(HasSubstr("\"Owm\" is not known"), HasSubstr("Own")));
    dir.write("empty.xml", "<Templates><Template Name='E'/></Templates>");
    EXPECT_THAT(command("montage a.edf --montage E --montage-file empty.xml").err,
                HasSubstr("montage E has no rows\n"));
    dir.write("held.raw", std::string(40, '\0'));
    const std::string held = "[FileInfo]\nFile=held.raw\nFileType=Interleaved\nSamplingRate=4\n"
                             "HeaderLength=0\nCalibration=1\nDataType=0\nWaveformCount=2\n";
    dir.write("held.lay", held + "[ChannelMap]\nC3-A2=1\nC4-A1=2\n[Montage]\nW=\n[W]\nC3-A2=\n");
    dir.write("part.lay", held + "[ChannelMap]\nC3-A2=1\n");
    EXPECT_THAT(command("export part.lay --montage Recorded").out, StartsWith("time,C3-A2,Ch2\n"));
    EXPECT_THAT(command("montage held.lay --montage w").err,
                AllOf(HasSubstr("cannot be made: its channels were recorded against different"),
                      Not(HasSubstr("not known"))));
    dir.write("broken.xml", "<Templates><Template");
    for (const auto& [file, words] :
         {std::pair("broken.xml", "broken.xml"), {"gone", "no such file"}}) {
        const CommandResult run =
            command(std::string("montage a.edf --montage X --montage-file ") + file);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_THAT(run.err, HasSubstr(words));
    }
    EXPECT_EQ(command("montage a.edf --montage-file gone").exitCode, 1);
}

// Rows that bring filters of their own keep them; the others take the options'.
TEST_F(MontageCommand, OwnFiltersOfARowStay) {
    const std::string rows = "Fp1-F7|0,0,0,0,0.1 sec,(off),0,0,0,0=own\nFp1-F7=plain\n";
    const auto lastValues = [&](const std::string& options) {
        const std::string out = withRows(rows, "export --to 1" + options).out;
        const std::size_t own = out.rfind("0.75,") + 5, plain = out.find(',', own) + 1;
        return std::pair(out.substr(own, plain - own - 1),
                         out.substr(plain, out.size() - plain - 1));
    };
    const auto [own, plain] = lastValues("");
    const auto [ownFiltered, plainFiltered] = lastValues(" --low-filter 0.5");
    EXPECT_NE(own, plain);
    EXPECT_EQ(ownFiltered, own);
    EXPECT_NE(plainFiltered, plain);
}

// "." is a gap: as the montage has them, but for those of groups that are left out as a whole.
TEST_F(MontageCommand, GapsAreDrawnAsTheyStand) {
    const auto recording = tool::openUsableRecording(dir.file("a.edf"), 0);
    ASSERT_TRUE(recording);
    for (const auto& [keys, drawn] :
         {std::pair("Gap1=\nGap2=\nFp1=a\nGap3=\nGap4=\nF7=b\nGap5=\n", "..a..b."),
          {"C3=\nGap1=\nFp1=a\nGap2=\nC3=\nTemp-Cz=\nGap3=\nF7=b\nGap4=\nC4=\n", "a.b"},
          {"Fp1=a\nC3=\nGap1=\nGap2=\nC3=\nF7=b\nP3+P4=\n", "a..b"},
          {"Gap1=\nC3=\nGap2=\nF7=b\n", ".b"}}) {
        EXPECT_EQ(withRows(keys, "plot -o x.svg").exitCode, 0);
        tool::SignalOptions options;
        options.montage = {"Own", dir.file("own.ini"), ""};
        tool::Rows rows(*recording);
        ASSERT_TRUE(rows.select(options, true));
        std::string names;
        for (const tool::Row& row : rows.rows())
            names += row.gap ? "." : row.name;
        EXPECT_EQ(names, drawn);
    }
}

} // namespace
} // namespace kvsig::test
