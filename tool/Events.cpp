#include "kvsig/readers/EDF90Reader.h"
#include "kvsig/util/NumberText.h"
#include "tool/Command.h"
#include "tool/EventList.h"
#include "tool/FactsOfFiles.h"
#include "tool/Table.h"
#include "tool/Words.h"

#include <memory>

namespace kvsig::tool {
namespace {

Json eventFacts(const Recording& recording, const std::vector<ListedEvent>& events) {
    Json list = Json::array();
    for (const ListedEvent& event : events)
        list.push_back({{"time", event.seconds},
                        {"clock", recording.reader->getClockTime(event.seconds)},
                        {"sample", event.sample},
                        {"duration", event.duration},
                        {"kind", event.kind},
                        {"label", event.label},
                        {"text", event.text}});
    return {{"file", toUtf8(recording.path)}, {"events", std::move(list)}};
}

std::string eventTable(const Recording& recording, const std::vector<ListedEvent>& events) {
    if (events.empty())
        return "no events\n";
    std::vector<std::vector<std::string>> rows{
        {"time", "clock", "sample", "duration/s", "label", "text"}};
    for (const ListedEvent& event : events)
        rows.push_back({clockText(event.seconds),
                        clockText(recording.reader->getClockTime(event.seconds)),
                        std::to_string(event.sample), generalText(event.duration, 7),
                        printable(event.label), printable(event.text)});
    return tableText(rows, {true, true, true, true, false, false});
}

FileFacts eventsOfFile(const std::string& file, int type, bool json) {
    const std::optional<Recording> recording = openRecording(file, type);
    if (!recording)
        return {nullptr, "", exitFailed};
    const std::vector<ListedEvent> events = eventsOf(*recording);
    for (DataReader* member : recording->members())
        if (dynamic_cast<EDF90Reader*>(member))
            remark(member->filePath() + ": annotations of EDF+ and BDF+ are not decoded");
    if (json)
        return {eventFacts(*recording, events), "", exitWell};
    return {nullptr, printable(file) + "\n" + eventTable(*recording, events) + "\n", exitWell};
}

} // namespace

void addEventsCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<FactsOptions>();
    CLI::App* command = app.add_subcommand("events", "List the events of recordings");
    command->footer("Example:\n  kvsig events night.edf");
    addFactsOptions(*command, *options);
    command->callback([options, &exitCode] {
        exitCode = printFacts(*options, [&options](const std::string& file, int type) {
            return eventsOfFile(file, type, options->json);
        });
    });
}

} // namespace kvsig::tool
