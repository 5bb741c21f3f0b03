#include "support/Command.h"
#include "support/EdfFile.h"
#include "support/RawFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kvsig::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::ordered_json;

EdfFile sleepFile() {
    return EdfFile()
        .patient("X F 04-JUL-1989 Doe_Jane")
        .reserved("EDF+C")
        .start("04.07.89", "23.05.07")
        .signal("EEG C3-A2", 4)
        .signal("Temp", 2)
        .units("DegC")
        .physical("34", "40")
        .digital("-100", "500")
        .signal("EDF Annotations", 8)
        .records(3);
}

TEST(Info, JsonKeysAreStable) {
    const TempDir dir;
    sleepFile().writeTo(dir.file("a.edf"));
    const CommandResult run = runCommand(dir, "info a.edf --json");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const Json info = Json::parse(run.out);
    std::vector<std::string> keys;
    for (const auto& [key, value] : info.items())
        keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<std::string>{"file", "type", "samplingRate", "sampleCount",
                                              "storedSampleCount", "duration", "startClock",
                                              "sampleTimes", "referential", "refGrid", "channels",
                                              "montages"}));
    EXPECT_EQ(info["type"], (Json{{"number", 6}, {"name", "EDF90"}}));
    EXPECT_EQ(info["samplingRate"], 4.0);
    EXPECT_EQ(info["sampleCount"], 12);
    EXPECT_EQ(info["duration"], 3.0);
    EXPECT_EQ(info["startClock"], 83107.0);
    EXPECT_EQ(info["refGrid"], "A2");
    EXPECT_EQ(info["channels"][1], (Json{{"index", 1},
                                         {"name", "Temp"},
                                         {"grid1", "Temp"},
                                         {"grid2", ""},
                                         {"type", 100},
                                         {"units", "DegC"},
                                         {"calibration", 0.01},
                                         {"dcOffset", 37.0},
                                         {"physioLow", 34.0},
                                         {"physioHigh", 40.0},
                                         {"digitalLow", -100},
                                         {"digitalHigh", 500},
                                         {"samplingRate", 2.0}}));
}

TEST(Info, PatientsAreShownOnlyWhenAsked) {
    const TempDir dir;
    sleepFile().writeTo(dir.file("a.edf"));
    for (const char* form : {"info a.edf", "info a.edf --json"}) {
        EXPECT_THAT(runCommand(dir, form).out, Not(HasSubstr("Doe"))) << form;
        EXPECT_THAT(runCommand(dir, std::string(form) + " --show-patient").out,
                    HasSubstr("Doe_Jane"))
            << form;
    }
}

TEST(Info, GoesOnAfterAFileThatDoesNotOpen) {
    const TempDir dir;
    sleepFile().writeTo(dir.file("a.edf"));
    const CommandResult run = runCommand(dir, "info missing.edf a.edf");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "kvsig: missing.edf: no such file\n");
    EXPECT_THAT(run.out, HasSubstr("C3-A2"));
    const CommandResult json = runCommand(dir, "info a.edf missing.edf a.edf --json");
    const Json list = Json::parse(json.out);
    ASSERT_EQ(list.size(), 3U) << "several files give a list";
    EXPECT_EQ(list[1]["error"], "missing.edf: no such file");
}

TEST(Info, TextsBecomeUtf8) {
    const TempDir dir;
    EdfFile().signal("Gr\xF6n", 4).units("\xB5V").records(2).writeTo(dir.file("latin.edf"));
    EdfFile().signal("Gr\xC3\xB6n", 4).units("\xB5V").records(2).writeTo(dir.file("utf8.edf"));
    for (const char* file : {"latin.edf", "utf8.edf"}) {
        const Json info = Json::parse(runCommand(dir, std::string("info --json ") + file).out);
        EXPECT_EQ(info["channels"][0]["name"], "Gr\xC3\xB6n") << file;
        EXPECT_EQ(info["channels"][0]["units"], "\xC2\xB5V") << file;
    }
}

TEST(Info, BothCountsOfABdfAreShown) {
    const TempDir dir;
    EdfFile().bdf().signal("Cz", 100).records(20).writeTo(dir.file("a.bdf"));
    const Json info = Json::parse(runCommand(dir, "info --json a.bdf").out);
    EXPECT_EQ(info["sampleCount"], 3000);
    EXPECT_EQ(info["storedSampleCount"], 2000);
    EXPECT_THAT(runCommand(dir, "info a.bdf").out, HasSubstr("stored     2000"));
}

// The common rate is the faster one's; the first file's own counts agree whatever the rates.
TEST(Info, APairCountsAtTheCommonRate) {
    const TempDir dir;
    EdfFile().signal("Cz", 100).records(20).writeTo(dir.file("a.edf"));
    EdfFile().bdf().signal("Cz", 50).records(20).writeTo(dir.file("c.bdf"));
    EdfFile().bdf().signal("Cz", 200).records(20).writeTo(dir.file("d.bdf"));
    const struct {
        const char* pair;
        int rate, samples, stored;
    } cases[] = {{"a.edf*c.bdf", 100, 2000, 2000},
                 {"a.edf*d.bdf", 200, 4000, 4000},
                 {"d.bdf*a.edf", 200, 6000, 4000}};
    for (const auto& c : cases) {
        const std::string command = std::string("info '") + c.pair + "'";
        const Json info = Json::parse(runCommand(dir, command + " --json").out);
        EXPECT_EQ(info["samplingRate"], c.rate) << c.pair;
        EXPECT_EQ(info["sampleCount"], c.samples) << c.pair;
        EXPECT_EQ(info["storedSampleCount"], c.stored) << c.pair;
        const bool told = runCommand(dir, command).out.find("stored  ") != std::string::npos;
        EXPECT_EQ(told, c.stored < c.samples) << c.pair;
    }
}

TEST(Info, TheTextShowsTheFirstAnchorsAndJsonAll) {
    const TempDir dir;
    std::string anchors = "FileType=Interleaved\n[SampleTimes]\n";
    for (int i = 0; i < 25; ++i)
        anchors += std::to_string(i) + "=" + std::to_string(i) + "\n";
    dir.write("stored.raw", RawFile().bytes());
    dir.write("a.lay", RawFile().sections(anchors).attributes());
    EXPECT_EQ(Json::parse(runCommand(dir, "info a.lay --json").out)["sampleTimes"].size(), 25U);
    EXPECT_THAT(runCommand(dir, "info a.lay").out,
                AllOf(HasSubstr("sample 19 at"), Not(HasSubstr("sample 20 at")),
                      HasSubstr("and 5 more; --json lists all")));
}

// A recording that opens although its times mean nothing is shown, and told of.
TEST(Info, RecordingsWithoutATimeAxisFail) {
    const TempDir dir;
    EdfFile().signal("Cz", 100).records(2).duration("0").writeTo(dir.file("a.edf"));
    const CommandResult run = runCommand(dir, "info a.edf");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "kvsig: a.edf: duration of a data record (offset 244) is \"0\", which "
                       "gives no sampling rate\n");
    EXPECT_THAT(run.out, HasSubstr("Cz"));
    EXPECT_EQ(runCommand(dir, "export a.edf").exitCode, 1);
    EXPECT_EQ(runCommand(dir, "plot a.edf -o a.svg").exitCode, 1);
}

TEST(Info, WrongUsageExitsWith2) {
    const TempDir dir;
    for (const char* arguments :
         {"", "info", "frobnicate", "info --frobnicate a.edf", "info a.edf --type NoSuchType"}) {
        const CommandResult run = runCommand(dir, arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments;
        EXPECT_EQ(run.out, "") << arguments;
        EXPECT_THAT(run.err, testing::StartsWith("kvsig: ")) << arguments;
    }
    EXPECT_EQ(runCommand(dir, "--help").exitCode, 0);
    EXPECT_THAT(runCommand(dir, "--version").out, testing::StartsWith("kvsig "));
}

} // namespace
} // namespace kvsig::test
