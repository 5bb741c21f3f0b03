#include "kvsig/readers/NervusRecords.h"

#include "kvsig/readers/NervusLayout.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kvsig::nervus {
namespace {

constexpr double epochDay = 25569;  // 1970-01-01
constexpr double lastDay = 2958466; // of the year 9999, exclusive
constexpr double secondsPerDay = 86400;
constexpr std::int64_t mostPadding = 1 << 16; // behind the events, as far as it is looked at
constexpr double ticks = 1e5; // per second; finer than that a date of eight bytes is not

struct TextTarget {
    std::uint64_t id;
    char* text;
    std::size_t size;
};

struct TypeName {
    const char* guid;
    const char* name;
};
constexpr const char* annotationType = "{A5A95612-A7F8-11CF-831A-0800091B5BDA}";
constexpr TypeName typeNames[] = {
    {"{A5A95646-A7F8-11CF-831A-0800091B5BDA}", "Seizure"},
    {"{A5A95608-A7F8-11CF-831A-0800091B5BDA}", "Hyperventilation"},
    {"{A5A95617-A7F8-11CF-831A-0800091B5BDA}", "Impedance"},
    {"{08784382-C765-11D3-90CE-00104B6F4F70}", "Format change"},
    {"{6FF394DA-D1B8-46DA-B78F-866C67CF02AF}", "Photic"},
    {"{481DFC97-013C-4BC5-A203-871B0375A519}", "Post-hyperventilation"},
    {"{725798BF-CD1C-4909-B793-6C7864C27AB7}", "Review progress"},
    {"{96315D79-5C24-4A65-B334-E31A95088D55}", "Exam start"},
    {"{A71A6DB5-4150-48BF-B462-1C40521EBD6F}", "Disconnect"},
    {"{6387C7C8-6F98-4886-9AF4-FA750ED300DE}", "Reconnect"},
    {"{71EECE80-EBC4-41C7-BF26-E56911426FB4}", "Paused"},
};

bool isZero(const HeaderBlock& block) {
    return std::all_of(block.bytes().begin(), block.bytes().end(),
                       [](std::byte byte) { return byte == std::byte{0}; });
}

std::string joined(const std::string& name, const std::string& text) {
    return text.empty() ? name : name.empty() ? text : name + ": " + text;
}

// Of other types than annotations what stands in the text's place need not be one: it must fit.
std::string textOf(const HeaderBlock& packet, std::int64_t length) {
    const std::uint64_t said = valueOf(packet, event::textLength);
    const std::string type = guidAt(packet, event::type);
    const bool isAnnotation = type == annotationType;
    const bool fits = std::cmp_less_equal(said, (length - event::text) / 2);
    const std::int64_t units =
        std::cmp_less(said, longestEventText) ? static_cast<std::int64_t>(said) : longestEventText;
    const std::string text =
        isAnnotation || fits ? valueOf(packet, WideField{event::text, units}) : std::string();
    const std::string label = valueOf(packet, event::label);
    if (isAnnotation)
        return !text.empty() ? text : !label.empty() ? label : "Annotation";
    for (const TypeName& known : typeNames)
        if (type == known.guid)
            return joined(known.name, text);
    return label.empty() && text.empty() ? "Event" : joined(label, text);
}

} // namespace

CalendarTime momentOf(double days) {
    if (!(days >= 1.0 && days < lastDay))
        return {};
    double day = std::floor(days);
    double second = std::round((days - day) * secondsPerDay * ticks) / ticks;
    if (second >= secondsPerDay) {
        day += 1;
        second = 0.0;
    }
    CalendarTime moment = CalendarTime::onDay(saturate<std::int64_t>(day - epochDay), second);
    moment.second = std::max(0.0, std::round(moment.second * ticks) / ticks);
    return moment;
}

std::string readPatient(const HeaderFile& file, const Container& container, PatientRec& patient) {
    const Section& section = container.section(patientTag);
    if (section.length == 0)
        return {};
    const HeaderBlock block = section.read(file, 0, mostPatientBytes);
    const auto held = static_cast<std::int64_t>(block.bytes().size());
    const std::int64_t room = std::max<std::int64_t>(held - patient::values, 0);
    const std::uint64_t values = valueOf(block, patient::valueCount);
    const std::uint64_t texts = valueOf(block, patient::textCount);
    if (std::cmp_greater(values, room / patient::itemBytes) ||
        std::cmp_greater(texts, room / patient::itemBytes - static_cast<std::int64_t>(values)))
        return "the section of the patient is left out: its " + std::to_string(values) +
               " values and " + std::to_string(texts) + " texts do not fit its " +
               std::to_string(held) + " bytes";
    std::int64_t at = patient::values;
    for (std::uint64_t i = 0; i < values; ++i, at += patient::itemBytes)
        if (valueOf(block, patient::id, at) == patient::birth)
            copyText(patient.birthDate, momentOf(valueOf(block, patient::value, at)).dateText());
    const TextTarget targets[] = {
        {1, patient.id, sizeof patient.id},     {2, patient.first, sizeof patient.first},
        {3, patient.mi, sizeof patient.mi},     {4, patient.last, sizeof patient.last},
        {10, patient.sex, sizeof patient.sex},  {12, patient.comments1, sizeof patient.comments1},
        {13, patient.hand, sizeof patient.hand}};
    std::int64_t text = at + static_cast<std::int64_t>(texts) * patient::itemBytes;
    for (std::uint64_t i = 0; i < texts; ++i, at += patient::itemBytes) {
        const std::uint64_t length = valueOf(block, patient::length, at);
        if (std::cmp_greater_equal(length, (held - text) / 2))
            return "text " + std::to_string(i + 1) + " of the patient's " + std::to_string(texts) +
                   " and what follows is left out: it leaves the section of " +
                   std::to_string(held) + " bytes";
        const auto units = static_cast<std::int64_t>(length);
        for (const TextTarget& target : targets)
            if (valueOf(block, patient::id, at) == target.id)
                copyText(target.text, target.size,
                         std::string_view(valueOf(block, WideField{text, units})));
        text += 2 * (units + 1);
    }
    return {};
}

std::string forEachEvent(const HeaderFile& file, const Container& container,
                         const std::function<bool(const Happening&)>& take) {
    const Section& section = container.section(eventTag);
    for (std::int64_t at = 0; at < section.length && file.fault().empty();) {
        const HeaderBlock head = section.read(file, at, event::headBytes);
        const std::uint64_t said = valueOf(head, event::length);
        if (guidAt(head, event::mark) != event::markGuid) {
            const HeaderBlock rest = section.read(file, at, mostPadding);
            if (section.length - at < event::headBytes || isZero(rest))
                break;
            return "what follows byte " + std::to_string(at) + " of the events' section of " +
                   std::to_string(section.length) + " is no event and is left out";
        }
        if (said < event::headBytes || std::cmp_greater(said, section.length - at))
            return "events are left out: the one at byte " + std::to_string(at) +
                   " of their section of " + std::to_string(section.length) + " is " +
                   std::to_string(said) + " bytes long";
        const auto length = static_cast<std::int64_t>(said);
        const HeaderBlock packet =
            section.read(file, at, std::min(length, event::text + 2 * longestEventText));
        at += length;
        if (length < event::leastBytes)
            continue;
        Happening happening{valueOf(packet, event::date), valueOf(packet, event::extraSeconds),
                            valueOf(packet, event::duration), textOf(packet, length)};
        if (!(happening.duration > 0.0) || !std::isfinite(happening.duration))
            happening.duration = 0.0;
        if (!take(happening))
            break;
    }
    return {};
}

} // namespace kvsig::nervus
