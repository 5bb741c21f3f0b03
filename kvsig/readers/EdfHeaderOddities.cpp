#include "kvsig/readers/EdfOddities.h"
#include "kvsig/readers/EdfSentences.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace kvsig::edf {
namespace {

using Severity = OpenFinding::Severity;

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

std::string namedField(const char* name, Field field, const Header& header) {
    return fieldText(name, field.offset, header.text(field));
}

class HeaderCheck {
  public:
    HeaderCheck(const File& file, const Header& header, int sampleBytes)
        : m_file(file), m_header(header), m_sampleBytes(sampleBytes) {}

    std::vector<OpenFinding> run() {
        checkReserved();
        checkIdentification();
        const bool shifted = checkShift();
        if (!shifted && m_signals > 0 && fullLength(m_signals) <= m_file.size()) {
            checkHeaderLength();
            checkSignals();
        }
        return std::move(m_findings);
    }

  private:
    void note(const std::string& text) { m_findings.push_back({Severity::note, text}); }
    void warn(const std::string& text) { m_findings.push_back({Severity::warning, text}); }

    void checkReserved() {
        const std::string text = m_header.text(reserved);
        const bool bdf = m_sampleBytes == 3;
        const bool known = text.empty() || text == "24BIT" || text == "EDF+C" || text == "EDF+D" ||
                           text == "BDF+C" || text == "BDF+D";
        if (!known)
            note(namedField("reserved field", reserved, m_header) +
                 ", neither empty nor a version of EDF+ or BDF+");
        else if (!text.empty() && bdf != (text == "24BIT" || text.starts_with("BDF")))
            note(namedField("reserved field", reserved, m_header) + " in a file of " +
                 (bdf ? "24" : "16") + "-bit samples");
        if (!declaresPlus(m_header) || m_signals <= 0)
            return;
        for (std::int64_t i = 0; i < m_signals; ++i)
            if (isAnnotation(m_header, i))
                return;
        note(namedField("reserved field", reserved, m_header) +
             ", but there is no annotation signal");
    }

    // What identifies a person is described, never shown.
    void checkIdentification() {
        const std::string patient = m_header.text(patientId);
        const std::string recording = m_header.text(recordingId);
        const std::string kind = m_header.text(reserved);
        if (kind.starts_with("EDF") || kind.starts_with("BDF"))
            checkPatientWords(splitWords(patient, ' ').size());
        if (declaresPlus(m_header) && recording.empty())
            note("recording identification (offset 88) is empty");
        if (patient.find("30-DEC-1899") != std::string::npos)
            note("patient identification (offset 8) holds the placeholder date 30-DEC-1899");
        if (recording.find('\\') != std::string::npos)
            note("recording identification (offset 88) holds a file path");
    }

    // EDF+ names four and allows more, which few readers expect.
    void checkPatientWords(std::size_t words) {
        const std::string has =
            "patient identification (offset 8) has " + std::to_string(words) + " ";
        if (words < 4)
            note(has + "of the four parts that EDF+ asks for");
        else if (words > 4)
            note(has + "parts, more than the four that EDF+ names");
    }

    // A writer that loses one byte of the patient identification moves every later field.
    bool checkShift() {
        const HeaderBlock block = HeaderBlock::readFrom(m_file, fixedLength);
        const auto shifted = [&block](Field field) {
            double value = 0.0;
            const bool whole =
                wholeDouble(readHeaderField(block, field.offset - 1, field.width), value);
            return whole ? std::optional<double>(value) : std::nullopt;
        };
        double signals = 0.0;
        if (wholeDouble(m_header.text(signalCount), signals))
            return false;
        const auto count = shifted(signalCount);
        const auto length = shifted(headerLength);
        if (!count || !length || *count < 1 || *length != 256.0 * (*count + 1))
            return false;
        warn("the fields behind the patient identification (offset 8) stand one byte early: read "
             "so, header length " +
             shortestText(*length) + " and " + shortestText(*count) + " signals agree");
        return true;
    }

    void checkHeaderLength() {
        const std::int64_t full = fullLength(m_signals);
        if (m_header.dataOffset() > full)
            note(namedField("header length", headerLength, m_header) + ", but the header of " +
                 std::to_string(m_signals) + " signals ends after " + std::to_string(full) +
                 " bytes; what stands between is skipped");
    }

    void checkSignals() {
        std::int64_t annotations = 0;
        for (std::int64_t i = 0; i < m_signals; ++i)
            annotations += isAnnotation(m_header, i) ? 1 : 0;
        if (annotations == m_signals)
            note("all signals (" + std::to_string(annotations) + ") hold annotations");
        checkVisibleAnnotations();
        checkFirstSignal();
        checkRanges("digital range", digitalMin, digitalMax);
        checkRanges("physical range", physicalMin, physicalMax);
        checkTransducers();
    }

    // Only EDF+ in a file of its own kind hides them.
    void checkVisibleAnnotations() {
        std::string first;
        std::int64_t signals = 0;
        for (const std::int64_t signal : m_header.channels())
            if (isAnnotation(m_header, signal) && signals++ == 0)
                first = "signal " + std::to_string(signal + 1) + " (" +
                        quoted(m_header.text(label, signal)) +
                        ") holds texts, but is shown as a channel, whose values mean nothing";
        if (signals > 0)
            warn(first +
                 (declaresPlus(m_header)
                      ? ""
                      : ": the reserved field (offset 192) declares no EDF+ or BDF+") +
                 (signals > 1 ? "; so in " + std::to_string(signals - 1) + " more signals" : ""));
    }

    void checkFirstSignal() {
        const auto& channels = m_header.channels();
        if (isAnnotation(m_header, 0) && !channels.empty() && channels.front() > 0)
            note("signal 1 (" + quoted(m_header.text(label, 0)) +
                 ") holds texts and is no channel: channel #0 is signal " +
                 std::to_string(channels.front() + 1));
    }

    // One line for all signals that have the same thing odd. Of annotations no range matters.
    void checkRanges(const std::string& name, SignalField lowField, SignalField highField) {
        struct Group {
            std::int64_t signals = 0;
            std::string first;
        };
        std::map<std::pair<Severity, std::string>, Group> groups;
        for (std::int64_t i = 0; i < m_signals; ++i) {
            const std::string low = m_header.text(lowField, i);
            const std::string high = m_header.text(highField, i);
            const std::optional<OpenFinding> odd = oddRange(low, high);
            if (!odd)
                continue;
            const Severity severity = isAnnotation(m_header, i) ? Severity::note : odd->severity;
            Group& group = groups[{severity, odd->text}];
            if (group.signals++ == 0)
                group.first = rangeText(name, i, low, high);
        }
        for (const auto& [odd, group] : groups)
            m_findings.push_back(
                {odd.first,
                 group.first + ", " + odd.second +
                     (group.signals > 1
                          ? "; so in " + std::to_string(group.signals - 1) + " more signals"
                          : "")});
    }

    static std::optional<OpenFinding> oddRange(const std::string& lowText,
                                               const std::string& highText) {
        double low = 0.0;
        double high = 0.0;
        if (!wholeDouble(lowText, low) || !wholeDouble(highText, high))
            return OpenFinding{Severity::warning, "not two numbers"};
        if (low == high)
            return OpenFinding{Severity::warning, "empty"};
        if (low > high)
            return OpenFinding{Severity::warning, "reversed: the polarity is inverted"};
        // Ten times its own width away from zero.
        if (std::max(low, -high) > 10 * (high - low))
            return OpenFinding{Severity::note, "far from zero: the offset matters"};
        return std::nullopt;
    }

    [[nodiscard]] std::string rangeText(const std::string& name, std::int64_t signal,
                                        const std::string& low, const std::string& high) const {
        return name + " of signal " + std::to_string(signal + 1) + " (" +
               quoted(m_header.text(label, signal)) + ") is " + low + " to " + high;
    }

    void checkTransducers() {
        constexpr SignalField transducer{16, 80};
        std::int64_t unknown = 0;
        for (std::int64_t i = 0; i < m_signals; ++i)
            unknown += m_header.text(transducer, i) == "?" ? 1 : 0;
        if (unknown > 0)
            note("transducer type of " + std::to_string(unknown) + " signals is \"?\"");
    }

    const File& m_file;
    const Header& m_header;
    int m_sampleBytes;
    std::int64_t m_signals = m_header.fileSignals();
    std::vector<OpenFinding> m_findings;
};

} // namespace

std::vector<OpenFinding> headerOddities(const File& file, const Header& header, int sampleBytes) {
    return HeaderCheck(file, header, sampleBytes).run();
}

} // namespace kvsig::edf
