#include "support/Command.h"
#include "support/EdfFile.h"
#include "support/MicromedFile.h"
#include "tool/plot/EventMarks.h"

#include <nlohmann/json.hpp>

namespace kvsig::test {
namespace {

using Json = nlohmann::json;
using tool::EventMarks;
using tool::ListedEvent;
using tool::placeEvents;

class Events : public CommandTest {};

TEST_F(Events, ListsWhatTheRecordingHolds) {
    MicromedFile file;
    file.channel({"Fp1"}).rate(100).frames(300).piece(500, 0).piece(2000, 100);
    dir.write("a.trc", file.note(50, "\xC4rger").flag(150, 170).bytes());
    EdfFile().signal("C3", 64).records(2).writeTo(dir.file("b.edf"));
    const CommandResult run = command("events a.trc b.edf gone.edf --json");
    EXPECT_EQ(run.exitCode, 1);
    const Json files = Json::parse(run.out);
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(files[0]["file"], "a.trc");
    EXPECT_EQ(files[0]["events"], Json::parse(R"([
        {"time": 0.5, "clock": 83112.5, "sample": 50, "duration": 0.0,
         "kind": 0, "label": "", "text": "\u00C4rger"},
        {"time": 1.5, "clock": 83127.5, "sample": 150, "duration": 0.2,
         "kind": 0, "label": "", "text": "Flag"}])"));
    EXPECT_EQ(files[1]["events"], Json::array());
    EXPECT_THAT(files[2]["error"].get<std::string>(), HasSubstr("no such file"));

    const CommandResult text = command("events a.trc b.edf");
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_THAT(text.out, HasSubstr("23:05:27.50     150         0.2         Flag"));
    EXPECT_THAT(text.out, HasSubstr("b.edf\nno events\n"));
    EXPECT_EQ(text.err, "kvsig: b.edf: annotations of EDF+ and BDF+ are not decoded\n");
    EXPECT_EQ(command("plot a.trc -o a.svg").exitCode, 0);
}

// What a file beside the recording loses is told by every command that looks at events.
TEST_F(Events, ThatAreLostAreTold) {
    dir.write("a.trc", MicromedFile().channel({"Fp1"}).rate(100).frames(300).bytes());
    dir.write("a.evt", "<EventFile><Events>");
    const std::string sentence = "a.evt: its events are left out: not well-formed XML";
    EXPECT_THAT(command("events a.trc").err, HasSubstr("kvsig: " + sentence));
    EXPECT_THAT(command("plot a.trc -o a.svg").err, HasSubstr("kvsig: " + sentence));
    EXPECT_THAT(command("check a.trc").out, HasSubstr("a.trc: warning: " + sentence));
}

ListedEvent at(double seconds, const std::string& text, double duration = 0.0) {
    ListedEvent event;
    event.seconds = seconds;
    event.text = text;
    event.duration = duration;
    return event;
}

// 10 s from second 5 on, 10 mm a second.
EventMarks placed(const std::vector<ListedEvent>& events) {
    return placeEvents(events, 5, 10, 100);
}

TEST_F(Events, TextsOnAPageDoNotLieOverEachOther) {
    std::vector<ListedEvent> many;
    for (std::size_t i = 0; i < 40; ++i)
        many.push_back(at(5 + 0.25 * static_cast<double>(i), std::string(3 + i % 11, 'x')));
    const EventMarks marks = placed(many);
    EXPECT_EQ(marks.marks.size(), 40U);
    EXPECT_GT(marks.left, 0U);
    EXPECT_GT(marks.lanes, 2);
    std::size_t texts = 0;
    for (const auto& a : marks.marks) {
        texts += a.text.empty() ? 0U : 1U;
        EXPECT_GE(a.textX, 0.0);
        EXPECT_LE(a.textX + a.textWidth, 100.0 + 1e-9);
        for (const auto& b : marks.marks)
            if (&a != &b && !a.text.empty() && !b.text.empty() && a.lane == b.lane) {
                EXPECT_TRUE(a.textX + a.textWidth <= b.textX || b.textX + b.textWidth <= a.textX);
            }
    }
    EXPECT_EQ(texts + marks.left, 40U);
}

TEST_F(Events, OnlyThoseOfThePageAreDrawn) {
    const EventMarks marks =
        placed({at(1, "before"), at(2, "reaches in", 4), at(4, "ends there", 1), at(5, "first"),
                at(14.99, "last", 9), at(15, "behind")});
    ASSERT_EQ(marks.marks.size(), 3U);
    for (const auto& mark : marks.marks) {
        EXPECT_GE(mark.from, 5.0);
        EXPECT_LE(mark.to, 15.0);
        EXPECT_EQ(mark.begins, mark.text != "reaches in");
    }
    EXPECT_EQ(marks.left, 0U);
    // A line for every tenth of a millimetre is as dense as a line can be.
    EXPECT_LE(placed(std::vector<ListedEvent>(5000, at(7, ""))).marks.size(), 1U);
    EXPECT_EQ(placed({}).lanes, 0);
    const EventMarks odd = placed({at(6, std::string(70, 'y') + "\nz")});
    EXPECT_EQ(odd.marks[0].text, std::string(47, 'y') + "…");
}

} // namespace
} // namespace kvsig::test
