#include "kvsig/readers/MicromedEvents.h"

#include "kvsig/readers/MicromedHeader.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"
#include "kvsig/util/XmlReader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kvsig::micromed {
namespace {

// Records of the zones that hold events.
constexpr NumberField<std::uint32_t> noteSample{"sample of a note", 0};
constexpr TextField noteText{"text of a note", 4, 40};
constexpr std::int64_t noteBytes = 44, mostNotes = 200;

constexpr NumberField<std::uint32_t> flagBegin{"begin of a flag", 0};
constexpr NumberField<std::uint32_t> flagEnd{"end of a flag", 4};
constexpr std::int64_t flagBytes = 8, mostFlags = 100;

constexpr NumberField<std::uint32_t> eventCode{"code of an event", 0};
constexpr NumberField<std::uint32_t> eventBegin{"begin of an event", 4};
constexpr NumberField<std::uint32_t> eventEnd{"end of an event", 8};
constexpr std::int64_t eventBytes = 12, mostEvents = 100;

constexpr NumberField<std::uint32_t> triggerSample{"sample of a trigger", 0};
constexpr NumberField<std::uint16_t> triggerValue{"value of a trigger", 4};
constexpr std::int64_t triggerBytes = 6, mostTriggers = 8192;
constexpr std::uint32_t triggersEnd = 0xFFFFFFFF;

bool isErased(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c == '\xFF'; });
}

// Calls `each(block, base)` for the records of a zone until it returns false. True when there are
// more of them.
template <typename Each>
bool forEachRecord(const HeaderFile& file, Zone zone, std::int64_t recordBytes, std::int64_t most,
                   Each each) {
    const std::int64_t count = std::min(zone.length / recordBytes, most);
    const HeaderBlock block = file.read("zone of events", zone.start, count * recordBytes);
    for (std::int64_t i = 0; i < count; ++i)
        if (!each(block, i * recordBytes))
            return false;
    return holdsMore(file, zone, recordBytes, most);
}

FlatEvent intervalOf(std::int64_t begin, std::int64_t end, double rate, std::string text) {
    const double seconds = static_cast<double>(std::max(end - begin, std::int64_t{0})) / rate;
    return {begin, std::move(text), {}, seconds};
}

// "2019-04-03T16:00:22.5", with a blank for the T or other separators; what follows the seconds (a
// time zone) is not looked at: the recorder's clock is local.
std::optional<CalendarTime> clockOf(std::string_view text) {
    constexpr std::array<std::size_t, 6> widths{4, 2, 2, 2, 2, 2};
    std::array<int, 6> parts{};
    std::size_t at = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    for (std::size_t i = 0; i < widths.size(); ++i) {
        if (i > 0)
            ++at; // the separator
        for (std::size_t digit = 0; digit < widths[i]; ++digit, ++at) {
            if (at >= text.size() || !isDigit(text[at]))
                return std::nullopt;
            parts[i] = 10 * parts[i] + (text[at] - '0');
        }
    }
    CalendarTime time{parts[0], parts[1], parts[2],
                      parts[3], parts[4], static_cast<double>(parts[5])};
    if (at < text.size() && (text[at] == '.' || text[at] == ','))
        time.second += leadingDouble("0." + std::string(text.substr(at + 1, 9)));
    return time.hasDate() && time.hasTime() ? std::optional(time) : std::nullopt;
}

} // namespace

void listZoneEvents(const HeaderBlock& header, const FlatRecording& recording, std::int64_t samples,
                    std::vector<FlatEvent>& events, std::vector<std::string>& oddities) {
    const HeaderFile& file = recording.samples;
    const auto records = [&](const char* name, std::int64_t bytes, std::int64_t most, auto each) {
        if (const std::string outside = whyOutside(header, name, file.size()); !outside.empty())
            oddities.push_back(outside + ": its events are left out");
        if (forEachRecord(file, findZone(header, name).within(file.size()), bytes, most, each))
            oddities.push_back("its zone " + std::string(name) + " holds more than " +
                               std::to_string(most) + " records: the rest is left out");
    };
    records("NOTE", noteBytes, mostNotes, [&](const HeaderBlock& block, std::int64_t base) {
        const std::uint32_t sample = valueOf(block, noteSample, base);
        const std::string text = textOf(block, noteText, base);
        if (sample == 0 && text.empty())
            return false;
        if (!isErased(text))
            events.push_back({sample, text, {}, 0.0});
        return true;
    });
    records("FLAGS", flagBytes, mostFlags, [&](const HeaderBlock& block, std::int64_t base) {
        const std::uint32_t begin = valueOf(block, flagBegin, base);
        const std::uint32_t end = valueOf(block, flagEnd, base);
        if (begin != 0 || end != 0)
            events.push_back(intervalOf(begin, end, recording.rate, "Flag"));
        return true;
    });
    for (const char* zone : {"EVENT A", "EVENT B"})
        records(zone, eventBytes, mostEvents, [&](const HeaderBlock& block, std::int64_t base) {
            const std::uint32_t code = valueOf(block, eventCode, base);
            const std::uint32_t begin = valueOf(block, eventBegin, base);
            const std::uint32_t end = valueOf(block, eventEnd, base);
            if (code != 0 || begin != 0 || end != 0)
                events.push_back(intervalOf(begin, end, recording.rate,
                                            std::string(zone) + " " + std::to_string(code)));
            return true;
        });
    records("TRIGGER", triggerBytes, mostTriggers,
            [&](const HeaderBlock& block, std::int64_t base) {
                const std::uint32_t sample = valueOf(block, triggerSample, base);
                const std::uint16_t value = valueOf(block, triggerValue, base);
                if (sample == triggersEnd)
                    return false;
                if (sample < samples && (sample != 0 || value != 0))
                    events.push_back({sample, std::to_string(value), {}, 0.0});
                return true;
            });
}

std::vector<ClockEvent> readEventFile(const char* path, std::vector<std::string>& oddities) {
    XmlReader xml;
    std::vector<ClockEvent> events;
    std::string reason = "it has no list of events";
    if (!xml.loadFile(path, &reason) || !xml.findElement("EventFile") || !xml.intoElement() ||
        !xml.findElement("Events") || !xml.intoElement()) {
        oddities.push_back("its events are left out: " + reason);
        return events;
    }
    int withoutBegin = 0, withoutEnd = 0;
    while (xml.findElement("Event") && xml.intoElement()) {
        const auto child = [&xml](const char* name) {
            xml.resetPosition();
            return xml.findElement(name) ? xml.innerDocument() : std::string();
        };
        const std::string extra = child("ExtraText");
        const std::string endText = child("End");
        const auto begin = clockOf(child("Begin")), end = clockOf(endText);
        if (begin)
            events.push_back({*begin, end.value_or(CalendarTime{.hour = -1}),
                              child("Text") + (extra.empty() ? "" : " " + extra)});
        withoutBegin += begin ? 0 : 1;
        withoutEnd += begin && !end && !endText.empty() ? 1 : 0;
        xml.outOfElement();
    }
    const auto tell = [&oddities](int count, const char* what, const char* how) {
        if (count > 0)
            oddities.push_back("events whose " + std::string(what) +
                               " is no date and time as yyyy-mm-dd hh:mm:ss are " + how + " (" +
                               std::to_string(count) + ")");
    };
    tell(withoutBegin, "Begin", "left out");
    tell(withoutEnd, "End", "shown without a duration");
    return events;
}

} // namespace kvsig::micromed
