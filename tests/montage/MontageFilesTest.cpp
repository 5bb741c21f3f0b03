#include "kvsig/montage/MontageFiles.h"

#include "kvsig/montage/MontageLoader.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/Text.h"
#include "montage/MontageFixture.h"
#include "support/LogCapture.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
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

TEST_F(MontageFiles, ATemplateIsTakenBeforeASection) {
    files.ini("[Both]\nFp1=\n[Ini]\nFp2=\n");
    files.xml(templates("Both", channel("F7")) + "");
    EXPECT_EQ(montage.createMontage("Both"), 1);
    EXPECT_THAT(montage.names(), ElementsAre("F7-Ref"));
    EXPECT_EQ(montage.createMontage("ini"), 1);
    EXPECT_THAT(montage.names(), ElementsAre("Fp2-Ref"));
    files.xml(templates("Both", channel("XX")));
    EXPECT_EQ(montage.createMontage("Both"), 0) << "its result counts, even when it makes nothing";
}

TEST_F(MontageFiles, NamesAreTranslatedToThoseOfTheRecording) {
    files.ini("[A]\nT3-T5=\nT5+T6=\n[B]\nT7-P7=x\n");
    files.xml(templates("C", "<AvgRef Definition=\"T5+T6\" Name=\"\"/>" + channel("T3-T5", "T3")));
    TestMontage modern(newNames);
    EXPECT_EQ(modern.createMontage("A"), 1);
    EXPECT_THAT(modern.names(), ElementsAre("T7-P7"));
    EXPECT_EQ(modern.averageNames().front(), "P7P8");
    EXPECT_EQ(modern.createMontage("C"), 2);
    EXPECT_THAT(modern.names(), ElementsAre("T7"));
    EXPECT_THAT(modern.averageNames(), ElementsAre("P7P8", "A1A2", "Av17", "Av12"));
    EXPECT_EQ(montage.createMontage("B"), 1);
    EXPECT_STREQ(montage.source(0)->grid1(), "T3");
}

TEST_F(MontageFiles, WhatIsNoUsableXmlIsNoTemplateAndIsLogged) {
    files.ini("[X]\nC3=\n");
    std::string deep;
    for (int i = 0; i < 200; ++i)
        deep += "<Defn>";
    const std::string bomb =
        "<!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">]>" +
        templates("Y", channel("&b;"));
    for (const std::string& text :
         {std::string("no XML"), std::string("<Templates><Template Name='X'>"), deep,
          std::string(std::size_t{2} << 20, ' '), std::string("<Montages/>"), std::string()}) {
        files.xml(text);
        EXPECT_EQ(montage.createMontage("X"), 1) << "the INI file is still there";
        EXPECT_THAT(montage.names(), ElementsAre("C3-Ref"));
        EXPECT_THAT(log.take(logWarning), Contains(HasSubstr("KVMontageTemplates.xml: ")));
    }
    files.xml(bomb);
    EXPECT_EQ(montage.createMontage("Y"), 0);
    EXPECT_THAT(montage.unresolved(), ElementsAre("&b;")) << "entities of its own stay text";
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
    EXPECT_EQ(montage.createMontage("Long"), 1);
    EXPECT_THAT(montage.names(), ElementsAre("C3-Ref"));
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
    const auto made = [this](const char* name) {
        return montage.createMontage(name) ? montage.names().front() : "none";
    };
    EXPECT_EQ(made("Double banana"), "Fp1-F7") << "found beside the program";
    const fs::path before = fs::current_path();
    const char* configBefore = std::getenv("XDG_CONFIG_HOME");
    const std::string config = configBefore ? configBefore : "";
    fs::current_path(current.path());
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
    fs::current_path(before);
    config.empty() ? ::unsetenv("XDG_CONFIG_HOME") : ::setenv("XDG_CONFIG_HOME", config.c_str(), 1);
}

TEST_F(MontageFiles, AStreamTakesThePlaceOfTheIniFile) {
    files.ini("[File]\nC3=\n[Both]\nC3=\n");
    files.xml(templates("Template", channel("F3")));
    std::istringstream stream("[Both]\nC4=\n[Template]\nC4=\n");
    stream.setstate(std::ios::eofbit);
    SetMontageStream(&stream);
    EXPECT_EQ(montage.createMontage("File"), 0);
    EXPECT_EQ(montage.createMontage("both"), 1);
    EXPECT_EQ(montage.createMontage("Both"), 1) << "read as often as needed";
    EXPECT_THAT(montage.names(), ElementsAre("C4-Ref"));
    EXPECT_EQ(montage.createMontage("Template"), 1);
    EXPECT_THAT(montage.names(), ElementsAre("F3-Ref"));
    EXPECT_EQ(MontageNames().front(), "Template");
    SetMontageStream(nullptr);
    EXPECT_EQ(montage.createMontage("File"), 1);
}

// All definitions, row by row.
std::vector<std::string> definitions(SourceMontage& montage) {
    std::vector<std::string> all;
    for (int i = 0; i < montage.sourceCount(); ++i)
        all.push_back(definition(*montage.source(i)));
    return all;
}

// Groups of electrodes, a gap behind each but the last.
using Groups = std::vector<std::vector<std::string>>;

const Groups doubleBanana{{"Fp1-F7", "F7-T3", "T3-T5", "T5-O1"},
                          {"Fp1-F3", "F3-C3", "C3-P3", "P3-O1"},
                          {"Fz-Cz", "Cz-Pz"},
                          {"Fp2-F4", "F4-C4", "C4-P4", "P4-O2"},
                          {"Fp2-F8", "F8-T4", "T4-T6", "T6-O2"}};
const Groups transverse{{"F7-Fp1", "Fp1-Fp2", "Fp2-F8"},
                        {"F7-F3", "F3-Fz", "Fz-F4", "F4-F8"},
                        {"T3-C3", "C3-Cz", "Cz-C4", "C4-T4"},
                        {"T5-P3", "P3-Pz", "Pz-P4", "P4-T6"},
                        {"T5-O1", "O1-O2", "O2-T6"}};
const Groups sides{{"Fp1", "F3", "C3", "P3", "O1", "F7", "T3", "T5"},
                   {"Fz", "Cz", "Pz"},
                   {"Fp2", "F4", "C4", "P4", "O2", "F8", "T4", "T6"}};

// The definitions expected: those of the groups, or their electrodes against a reference.
std::vector<std::string> expectedRows(const Groups& groups, const std::string& reference,
                                      bool modernNames) {
    std::string text;
    int row = 0;
    for (const auto& group : groups) {
        if (row > 0)
            text += "Gap" + std::to_string(++row) + "\n";
        for (const std::string& grid1 : group)
            if (grid1 != reference) {
                text += grid1 + (reference.empty() ? "" : "-" + reference) + "\n";
                ++row;
            }
    }
    const std::pair<const char*, const char*> pairs[] = {
        {"T3", "T7"}, {"T4", "T8"}, {"T5", "P7"}, {"T6", "P8"}};
    for (const auto& [old, modern] : pairs)
        for (std::size_t at = 0; modernNames && (at = text.find(old, at)) != std::string::npos;)
            text.replace(at, 2, modern);
    return splitWords(text, '\n');
}

TEST_F(MontageFiles, ShippedMontagesFitEitherGenerationOfNames) {
    const struct {
        const char* name;
        const Groups* groups;
        const char* reference;
    } shipped[] = {{"Double banana", &doubleBanana, ""}, {"Transverse", &transverse, ""},
                   {"Referential A1A2", &sides, "A1A2"}, {"Linked mastoids", &sides, "M1M2"},
                   {"Referential Cz", &sides, "Cz"},     {"Average", &sides, "Av17"}};
    const std::string share = KVSIG_SOURCE_DIR "/share/";
    for (const bool modern : {false, true}) {
        std::vector<std::string> electrodes = modern ? newNames : oldNames;
        electrodes.insert(electrodes.end(), {"M1", "M2"});
        TestMontage of(electrodes);
        for (const char* file : {"KVMontageTemplates.xml", "kvmont.ini"}) {
            SetMontageFile((share + file).c_str());
            for (const auto& expected : shipped) {
                ASSERT_GT(of.createMontage(expected.name), 0) << expected.name;
                EXPECT_THAT(of.unresolved(), IsEmpty());
                EXPECT_STREQ(of.ref(), expected.reference);
                EXPECT_EQ(definitions(of),
                          expectedRows(*expected.groups, expected.reference, modern))
                    << expected.name << " of " << file;
            }
        }
    }
}

} // namespace
} // namespace kvsig
