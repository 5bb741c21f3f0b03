#include "support/Command.h"
#include "support/EdfFile.h"
#include "support/RawFile.h"

#include <nlohmann/json.hpp>

namespace kvsig::test {
namespace {

using Json = nlohmann::ordered_json;

class Info : public CommandTest {
  protected:
    void SetUp() override {
        EdfFile file = EdfFile().patient("X F 04-JUL-1989 Doe_Jane").reserved("EDF+C").records(3);
        file.signal("EEG C3-A2", 4).start("04.07.89", "23.05.07");
        file.signal("Temp", 2).units("DegC").physical("34", "40").digital("-100", "500");
        file.signal("EDF Annotations", 8).writeTo(dir.file("a.edf"));
    }
    Json json(const std::string& arguments) const {
        return Json::parse(command("info --json " + arguments).out);
    }
};

TEST_F(Info, JsonKeysAreStable) {
    const Json info = json("a.edf");
    std::vector<std::string> keys;
    for (const auto& [key, value] : info.items())
        keys.push_back(key);
    EXPECT_THAT(keys, ElementsAre("file", "type", "samplingRate", "sampleCount",
                                  "storedSampleCount", "duration", "startClock", "sampleTimes",
                                  "referential", "refGrid", "channels", "montages"));
    EXPECT_EQ(info["type"], (Json{{"number", 6}, {"name", "EDF90"}}));
    EXPECT_EQ(info["samplingRate"], 4.0);
    EXPECT_EQ(info["sampleCount"], 12);
    EXPECT_EQ(info["duration"], 3.0);
    EXPECT_EQ(info["startClock"], 83107.0);
    EXPECT_EQ(info["refGrid"], "A2");
    EXPECT_EQ(info["channels"][1], Json::parse(R"({
        "index": 1, "name": "Temp", "grid1": "Temp", "grid2": "", "type": 100, "units": "DegC",
        "calibration": 0.01, "dcOffset": 37.0, "physioLow": 34.0, "physioHigh": 40.0,
        "digitalLow": -100, "digitalHigh": 500, "samplingRate": 2.0})"));
}

TEST_F(Info, PatientsAreShownOnlyWhenAsked) {
    for (const char* form : {"info a.edf", "info a.edf --json"}) {
        EXPECT_THAT(command(form).out, Not(HasSubstr("Doe"))) << form;
        EXPECT_THAT(command(std::string(form) + " --show-patient").out, HasSubstr("Doe_Jane"))
            << form;
    }
}

TEST_F(Info, GoesOnAfterAFileThatDoesNotOpen) {
    const CommandResult run = command("info missing.edf a.edf");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "kvsig: missing.edf: no such file\n");
    EXPECT_THAT(run.out, HasSubstr("C3-A2"));
    const Json list = json("a.edf missing.edf a.edf");
    ASSERT_EQ(list.size(), 3U) << "several files give a list";
    EXPECT_EQ(list[1]["error"], "missing.edf: no such file");
}

TEST_F(Info, TextsBecomeUtf8) {
    for (const char* name : {"Gr\xF6n", "Gr\xC3\xB6n"}) {
        EdfFile().signal(name, 4).units("\xB5V").records(2).writeTo(dir.file("a.edf"));
        const Json channel = json("a.edf")["channels"][0];
        EXPECT_EQ(channel["name"], "Gr\xC3\xB6n");
        EXPECT_EQ(channel["units"], "\xC2\xB5V");
    }
}

// The common rate is the faster one's; the first file's own counts agree whatever the rates. Of a
// BDF the kernel counts half again as many as it holds.
TEST_F(Info, BothCountsAreShownAtTheCommonRate) {
    EdfFile().signal("Cz", 100).records(20).writeTo(dir.file("a.edf"));
    EdfFile().bdf().signal("Cz", 50).records(20).writeTo(dir.file("c.bdf"));
    EdfFile().bdf().signal("Cz", 200).records(20).writeTo(dir.file("d.bdf"));
    const struct {
        const char* file;
        int rate, samples, stored;
    } cases[] = {{"d.bdf", 200, 6000, 4000},
                 {"'a.edf*c.bdf'", 100, 2000, 2000},
                 {"'a.edf*d.bdf'", 200, 4000, 4000},
                 {"'d.bdf*a.edf'", 200, 6000, 4000}};
    for (const auto& c : cases) {
        const Json info = json(c.file);
        EXPECT_EQ(info["samplingRate"], c.rate) << c.file;
        EXPECT_EQ(info["sampleCount"], c.samples) << c.file;
        EXPECT_EQ(info["storedSampleCount"], c.stored) << c.file;
        const std::string text = command(std::string("info ") + c.file).out;
        for (const char* told : {"stored  ", "stored     4000,"})
            EXPECT_EQ(text.find(told) != std::string::npos, c.stored < c.samples) << text;
    }
}

TEST_F(Info, TheTextShowsTheFirstAnchorsAndJsonAll) {
    std::string anchors = "FileType=Interleaved\n[SampleTimes]\n";
    for (int i = 0; i < 25; ++i)
        anchors += std::to_string(i) + "=" + std::to_string(i) + "\n";
    dir.write("stored.raw", RawFile().bytes());
    dir.write("a.lay", RawFile().sections(anchors).attributes());
    EXPECT_EQ(json("a.lay")["sampleTimes"].size(), 25U);
    EXPECT_THAT(command("info a.lay").out,
                AllOf(HasSubstr("sample 19 at"), Not(HasSubstr("sample 20 at")),
                      HasSubstr("and 5 more; --json lists all")));
}

// A recording that opens although its times mean nothing is shown, and told of.
TEST_F(Info, RecordingsWithoutATimeAxisFail) {
    EdfFile().signal("Cz", 100).records(2).duration("0").writeTo(dir.file("a.edf"));
    const CommandResult run = command("info a.edf");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "kvsig: a.edf: duration of a data record (offset 244) is \"0\", which "
                       "gives no sampling rate\n");
    EXPECT_THAT(run.out, HasSubstr("Cz"));
    EXPECT_EQ(command("export a.edf").exitCode, 1);
    EXPECT_EQ(command("plot a.edf -o a.svg").exitCode, 1);
}

TEST_F(Info, WrongUsageExitsWith2) {
    for (const char* arguments :
         {"", "info", "frobnicate", "info --frobnicate a.edf", "info a.edf --type NoSuchType"}) {
        const CommandResult run = command(arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments;
        EXPECT_EQ(run.out, "") << arguments;
        EXPECT_THAT(run.err, StartsWith("kvsig: ")) << arguments;
    }
    EXPECT_EQ(command("--help").exitCode, 0);
    EXPECT_THAT(command("--version").out, StartsWith("kvsig "));
}

} // namespace
} // namespace kvsig::test
