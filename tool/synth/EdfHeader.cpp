#include "tool/synth/EdfHeader.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"
#include "tool/synth/PlainNumber.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>

namespace kvsig::tool {
namespace {

constexpr std::array<std::string_view, 12> monthNames{"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                      "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

bool inRange(std::int64_t value, std::int64_t low, std::int64_t high) {
    return value >= low && value <= high;
}

bool isDottedTriple(std::string_view text) {
    return text.find_first_not_of("0123456789.") == std::string_view::npos && text.size() <= 8 &&
           dottedTriple(text).complete;
}

// Appends fields of fixed width; the first that is too long is remembered.
class FieldWriter {
  public:
    void add(std::string_view what, std::string_view text, std::size_t width) {
        if (text.size() > width && m_reason.empty())
            m_reason = std::string(what) + " \"" + std::string(text) + "\" does not fit in the " +
                       std::to_string(width) + " characters of its header field";
        m_bytes += text;
        m_bytes.resize(m_bytes.size() + width - std::min(width, text.size()), ' ');
    }

    [[nodiscard]] const std::string& bytes() const { return m_bytes; }
    [[nodiscard]] const std::string& reason() const { return m_reason; }

  private:
    std::string m_bytes;
    std::string m_reason;
};

std::string dotted(int first, int second, int third) {
    return paddedText(first, 2) + "." + paddedText(second, 2) + "." + paddedText(third, 2);
}

std::string recordingField(const EdfHeader& header) {
    const StartTime& t = header.start;
    if (header.kind != EdfKind::edfPlus)
        return header.remark;
    return "Startdate " + paddedText(t.day, 2) + "-" +
           std::string(monthNames[static_cast<std::size_t>(t.month - 1)]) + "-" +
           std::to_string(t.year) + " X X " + header.remark;
}

std::string_view reservedField(EdfKind kind) {
    switch (kind) {
    case EdfKind::edfPlus:
        return "EDF+C";
    case EdfKind::bdf:
        return "24BIT";
    case EdfKind::edf:
        break;
    }
    return "";
}

void addSignals(FieldWriter& fields, const std::vector<EdfSignal>& signals) {
    const auto column = [&](std::string_view what, std::size_t width,
                            const std::function<std::string(const EdfSignal&)>& text) {
        for (const EdfSignal& signal : signals)
            fields.add(what, text(signal), width);
    };
    column("label", 16, [](const EdfSignal& s) { return s.label; });
    column("transducer", 80, [](const EdfSignal& s) { return s.transducer; });
    column("units", 8, [](const EdfSignal& s) { return s.units; });
    column("physical minimum", 8,
           [](const EdfSignal& s) { return plainNumber(s.physicalMinimum); });
    column("physical maximum", 8,
           [](const EdfSignal& s) { return plainNumber(s.physicalMaximum); });
    column("digital minimum", 8,
           [](const EdfSignal& s) { return std::to_string(s.digitalMinimum); });
    column("digital maximum", 8,
           [](const EdfSignal& s) { return std::to_string(s.digitalMaximum); });
    column("prefiltering", 80, [](const EdfSignal&) { return std::string(); });
    column("samples per record", 8,
           [](const EdfSignal& s) { return std::to_string(s.samplesPerRecord); });
    column("reserved", 32, [](const EdfSignal&) { return std::string(); });
}

} // namespace

std::optional<StartTime> readStartTime(std::string_view text) {
    const auto words = splitWords(text, ' ');
    if (words.size() != 2 || !isDottedTriple(words[0]) || !isDottedTriple(words[1]))
        return std::nullopt;
    const DottedTriple date = dottedTriple(words[0]);
    const DottedTriple clock = dottedTriple(words[1]);
    if (!inRange(date.third, 0, 99) || !inRange(clock.first, 0, 23) ||
        !inRange(clock.second, 0, 59) || !inRange(clock.third, 0, 59))
        return std::nullopt;
    StartTime start;
    start.year = static_cast<int>(date.third) + (date.third < 85 ? 2000 : 1900);
    start.month = static_cast<int>(date.second);
    start.day = static_cast<int>(date.first);
    start.hour = static_cast<int>(clock.first);
    start.minute = static_cast<int>(clock.second);
    start.second = static_cast<int>(clock.third);
    const std::chrono::year_month_day day{std::chrono::year(start.year),
                                          std::chrono::month(static_cast<unsigned>(start.month)),
                                          std::chrono::day(static_cast<unsigned>(start.day))};
    return day.ok() ? std::optional(start) : std::nullopt;
}

std::size_t EdfHeader::recordBytes() const {
    std::size_t samples = 0;
    for (const EdfSignal& signal : signals)
        samples += static_cast<std::size_t>(signal.samplesPerRecord);
    return samples * bytesPerSample();
}

std::string headerBytes(const EdfHeader& header, std::string& reason) {
    FieldWriter fields;
    fields.add("version",
               header.kind == EdfKind::bdf ? "\xFF"
                                             "BIOSEMI"
                                           : "0",
               8);
    fields.add("patient", "X X X X", 80);
    fields.add("recording", recordingField(header), 80);
    const StartTime& t = header.start;
    fields.add("start date", dotted(t.day, t.month, t.year % 100), 8);
    fields.add("start time", dotted(t.hour, t.minute, t.second), 8);
    fields.add("header length", std::to_string(256 * (header.signals.size() + 1)), 8);
    fields.add("reserved", reservedField(header.kind), 44);
    fields.add("number of records", std::to_string(header.records), 8);
    fields.add("record duration", plainNumber(header.recordDuration), 8);
    fields.add("number of signals", std::to_string(header.signals.size()), 4);
    addSignals(fields, header.signals);
    reason = fields.reason();
    return reason.empty() ? fields.bytes() : std::string();
}

} // namespace kvsig::tool
