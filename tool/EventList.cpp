#include "tool/EventList.h"

#include "kvsig/kernel/ClientEvent.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"
#include "tool/HeardWarnings.h"
#include "tool/Words.h"

#include <algorithm>
#include <deque>

namespace kvsig::tool {

namespace {

std::vector<std::string> readEvents(IDataReader& reader, std::deque<ClientEvent>& events) {
    const HeardWarnings warnings;
    reader.readEvents(events);
    return warnings.texts();
}

} // namespace

std::vector<std::string> lostEventsOf(IDataReader& reader) {
    std::deque<ClientEvent> events;
    return readEvents(reader, events);
}

std::vector<ListedEvent> eventsOf(const Recording& recording) {
    std::deque<ClientEvent> events;
    for (const std::string& lost : readEvents(*recording.reader, events))
        complain(lost);
    const double rate = recording.reader->samplingRate();
    std::vector<ListedEvent> listed;
    listed.reserve(events.size());
    for (const ClientEvent& event : events) {
        const long sample = recording.atCommonRate(saturate<long>(event.sample));
        listed.push_back({event.kind, sample, rate > 0 ? static_cast<double>(sample) / rate : 0.0,
                          event.duration, toUtf8(fieldView(event.label)),
                          toUtf8(fieldView(event.stateText))});
    }
    std::stable_sort(listed.begin(), listed.end(), [](const ListedEvent& a, const ListedEvent& b) {
        return a.sample < b.sample;
    });
    return listed;
}

} // namespace kvsig::tool
