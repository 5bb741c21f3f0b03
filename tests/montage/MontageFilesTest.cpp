#include "kvsig/montage/MontageFiles.h"

#include "kvsig/montage/MontageLoader.h"
#include "kvsig/montage/names/Translate1020.h"
#include "kvsig/util/Limits.h"
#include "montage/MontageFixture.h"
#include "support/InDirectory.h"
#include "support/LogCapture.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <set>
#include <sstream>

namespace kvsig {
namespace {

using test::definition;
using test::newNames;
using test::oldNames;
using test::TestMontage;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string templates(const std::string& name, const std::string& content) {
    return "<Templates><Template Name=\"" + name + "\"><Defn>" + content +
           "</Defn></Template></Templates>";
}

std::string channel(const std::string& defn, const std::string& name = "") {
    return "<Channel Definition=\"" + defn + "\" Name=\"" + name + "\"/>";
}

class MontageFiles : public testing::Test {
  protected:
    /// The first row of the montage of that name.
    std::string made(const char* name) {
        return montage.createMontage(name) ? montage.names().front() : "none";
    }

    test::MontageDirectory files;
    TestMontage montage{oldNames};
    test::LogCapture log;
};

TEST_F(MontageFiles, KeysOfASectionAreRowsAndAveragesComeFirst) {
    files.ini("[Other]\r\nFp1=\r\n; [Mine]\r\n[MINE]\r\nC3=\r\nC3-F3F4=left\r\nXX=\r\n"
              "F3+F4=\r\nF7+F8=Sides\r\nGap1=\r\n C4 = right \r\n=\r\n[End]\r\nF8=\r\n");
    EXPECT_EQ(montage.createMontage("Mine"), 1);
    EXPECT_THAT(montage.names(), ElementsAre("C3-Ref", "left", "        ", "right"));
    EXPECT_THAT(montage.averageNames(), ElementsAre("F3F4", "Sides", "A1A2", "Av17", "Av12"));
    EXPECT_STREQ(montage.source(1)->grid2(), "F3F4");
    EXPECT_THAT(montage.unresolved(), ElementsAre("XX"));
    EXPECT_EQ(montage.createMontage("[Mine"), 0);
    EXPECT_THAT(montage.names(), IsEmpty());
}

TEST_F(MontageFiles, ElementsOfATemplateAreRowsAndAveragesComeFirst) {
    files.xml(templates("Other", channel("Fp1")) + "<!-- -->");
    EXPECT_EQ(montage.createMontage("other"), 0) << "the case of a template's name counts";
    files.xml(templates("Mine", channel("C3") + channel("C4-Av17", "R &amp; S") +
                                    "<Other Definition='Fp2'/>" + channel("XX") +
                                    "<AvgRef Definition='F3+F4' Name=''/>"
                                    "<AvgRef Definition='F7+F8' Name='Sides'/>"
                                    "<Channel Definition='C3-sides'/>"));
    EXPECT_EQ(montage.createMontage("Mine"), 5) << "averages of its own and rows";
    EXPECT_THAT(montage.names(), ElementsAre("C3-Ref", "R & S", "C3-Sides"));
    EXPECT_THAT(montage.averageNames(), ElementsAre("F3F4", "Sides", "A1A2", "Av17", "Av12"));
    EXPECT_THAT(montage.unresolved(), ElementsAre("XX"));
    EXPECT_STREQ(montage.name(), "Mine");
}

TEST_F(MontageFiles, NamesAreTranslatedToThoseOfTheRecording) {
    files.ini("[A]\nT7-P7=x\n");
    files.xml(templates("B", "<AvgRef Definition=\"T5+T6\" Name=\"\"/>" + channel("T3-T5", "T3")));
    EXPECT_EQ(montage.createMontage("A"), 1);
    EXPECT_STREQ(montage.source(0)->grid1(), "T3");
    TestMontage modern(newNames);
    EXPECT_EQ(modern.createMontage("B"), 2);
    EXPECT_THAT(modern.names(), ElementsAre("T7"));
    EXPECT_THAT(modern.averageNames(), ElementsAre("P7P8", "A1A2", "Av17", "Av12"));
}

TEST_F(MontageFiles, WhatIsNoUsableXmlIsNoTemplateAndIsLogged) {
    files.ini("[X]\nC3=\n");
    for (const std::string& text :
         {std::string("no XML"), std::string("<Templates><Template Name='X'>"),
          std::string(std::size_t{2} << 20, ' '), std::string("<Montages/>"), std::string()}) {
        files.xml(text);
        EXPECT_EQ(made("X"), "C3-Ref") << "the INI file is still there";
        EXPECT_THAT(log.take(logWarning), Contains(HasSubstr("KVMontageTemplates.xml: ")));
    }
    files.xml("<Templates><Template Name=\"X\"/></Templates>");
    EXPECT_EQ(montage.createMontage("X"), 0) << "a template without content is one";
    files.xml(templates("X", "&lt;Channel Definition=\"C4\"/&gt;"));
    EXPECT_EQ(montage.createMontage("X"), 1) << "escaped content";
    files.xml(templates("X", "&lt;Channel"));
    log.take();
    EXPECT_EQ(montage.createMontage("X"), 0);
    EXPECT_THAT(log.take(logWarning), ElementsAre(HasSubstr("\"X\"")));
    EXPECT_EQ(montage.createMontageXML(nullptr), 0);
}

TEST_F(MontageFiles, HugeMontagesAreCut) {
    std::string rows = "[Huge]\n";
    for (int i = 0; i < mostMontageRows + 10; ++i)
        rows += "C3=" + std::to_string(i) + "\n";
    files.ini(rows);
    EXPECT_EQ(montage.createMontage("Huge"), 1);
    EXPECT_THAT(montage.names(), SizeIs(mostMontageRows));
    EXPECT_THAT(log.take(logWarning), ElementsAre(HasSubstr("\"Huge\"")));
    files.ini("[Long]\n" + std::string(100000, 'x') + "=\nC3=\n");
    EXPECT_EQ(made("Long"), "C3-Ref");
}

TEST_F(MontageFiles, NamesAreListedOnceAndNotWithoutEnd) {
    files.xml(templates("Mine", channel("C3")));
    std::string text = "[MINE]\n[mine]\n[Mine]\n";
    for (int i = 0; i < 60000; ++i)
        text += "[m" + std::to_string(i) + "]\n";
    files.ini(text);
    const auto names = MontageNames();
    EXPECT_THAT(names, SizeIs(4096));
    EXPECT_EQ(names.front(), "Mine");
    const auto section = std::find(names.begin(), names.end(), "MINE");
    ASSERT_NE(section, names.end()) << "a template answers to its own spelling only";
    EXPECT_EQ(section[1], "m0") << "a section to every one";
}

TEST_F(MontageFiles, APlusInSettingsMakesNoAverage) {
    files.ini("[Slow]\nC3-A1A2|1,0,0,0,1.6e+02 sec,1e+03 Hz,0,0,0,0=\nF7+F8=\n");
    EXPECT_EQ(montage.createMontage("Slow"), 1);
    EXPECT_THAT(montage.names(), ElementsAre("C3-A1A2"));
    EXPECT_DOUBLE_EQ(double{montage.source(0)->settings().highPass.cutoff}, 0.001);
    EXPECT_EQ(double{montage.source(0)->settings().lowPass.cutoff}, 1000.0);
    EXPECT_EQ(montage.averageNames().front(), "F7F8");
}

TEST_F(MontageFiles, TheFirstPlaceThatHasTheMontageWins) {
    namespace fs = std::filesystem;
    const test::TempDir current, user;
    EXPECT_EQ(made("Double banana"), "Fp1-F7") << "found beside the program";
    const char* configBefore = std::getenv("XDG_CONFIG_HOME");
    const std::string config = configBefore ? configBefore : "";
    const test::InDirectory in(current.path());
    ::setenv("XDG_CONFIG_HOME", user.path().c_str(), 1);
    fs::create_directory(user.path() / "kvsig");
    user.write("kvsig/kvmont.ini", "[Double banana]\nF3=\n[User]\nF3=\n[Rows]\nF3=\n");
    files.ini("[Double banana]\nP3=\n[Rows]\nP3=\n");
    EXPECT_EQ(made("Double banana"), "Fp1-F7") << "any template comes before every INI file";
    EXPECT_EQ(made("rows"), "P3-Ref");
    current.write("KVMontageTemplates.xml", templates("Double banana", channel("C3")));
    EXPECT_EQ(made("Double banana"), "C3-Ref");
    files.xml(templates("Double banana", channel("P4")));
    EXPECT_EQ(made("Double banana"), "P4-Ref");
    const std::string one =
        files.dir.write("mine.txt", "\n [Double banana]\n[Double banana]\nO1=\n");
    SetMontageFile(one.c_str());
    EXPECT_EQ(made("Double banana"), "O1-Ref");
    EXPECT_EQ(made("user"), "F3-Ref") << "one place's file does not hide another's montages";
    const auto names = MontageNames();
    EXPECT_THAT(names, testing::IsSupersetOf({"Double banana", "Rows", "User", "Transverse"}));
    EXPECT_EQ(std::count(names.begin(), names.end(), "Double banana"), 1);
    SetMontageFile("");

    SetMontageDirectory("");
    EXPECT_EQ(made("User"), "none") << "the current directory alone";
    EXPECT_EQ(made("Double banana"), "C3-Ref");
    EXPECT_THAT(MontageNames(), ElementsAre("Double banana"));
    config.empty() ? ::unsetenv("XDG_CONFIG_HOME") : ::setenv("XDG_CONFIG_HOME", config.c_str(), 1);
}

TEST_F(MontageFiles, AStreamTakesThePlaceOfTheIniFile) {
    files.ini("[File]\nC3=\n[Both]\nC3=\n");
    files.xml(templates("Template", channel("F3")));
    std::istringstream stream("[Both]\nC4=\n[Template]\nC4=\n");
    stream.setstate(std::ios::eofbit);
    SetMontageStream(&stream);
    EXPECT_EQ(made("File"), "none");
    for (int reads = 0; reads < 2; ++reads)
        EXPECT_EQ(made("both"), "C4-Ref");
    EXPECT_EQ(made("Template"), "F3-Ref");
    EXPECT_EQ(MontageNames().front(), "Template");
    SetMontageStream(nullptr);
    EXPECT_EQ(made("File"), "C3-Ref");
}

// Two files by hand that say the same, of every montage for either generation of names.
TEST_F(MontageFiles, ShippedMontagesAgreeAndFitEitherGenerationOfNames) {
    const std::pair<const char*, const char*> shipped[] = {
        {"Double banana", ""},       {"Transverse", ""},       {"Referential A1A2", "A1A2"},
        {"Linked mastoids", "M1M2"}, {"Referential Cz", "Cz"}, {"Average", "Av17"}};
    const std::string share = KVSIG_SOURCE_DIR "/share/";
    for (const auto& [name, reference] : shipped) {
        std::set<std::string> rows;
        for (std::vector<std::string> electrodes : {oldNames, newNames}) {
            electrodes.insert(electrodes.end(), {"M1", "M2"});
            TestMontage of(electrodes);
            for (const char* file : {"KVMontageTemplates.xml", "kvmont.ini"}) {
                SetMontageFile((share + file).c_str());
                ASSERT_GT(of.createMontage(name), 0) << name << " of " << file;
                EXPECT_THAT(of.unresolved(), IsEmpty());
                EXPECT_STREQ(of.ref(), reference);
                std::string text;
                for (int i = 0; i < of.sourceCount(); ++i)
                    text += definition(*of.source(i)) + "\n";
                Translate1020To1010Names(text.data(), text.data() + text.size(), true);
                rows.insert(text);
            }
        }
        EXPECT_THAT(rows, SizeIs(1)) << name;
    }
}

} // namespace
} // namespace kvsig
