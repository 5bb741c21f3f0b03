#include "kvsig/readers/EdfOddities.h"
#include "kvsig/readers/EdfOnset.h"
#include "kvsig/readers/EdfOnsetGrid.h"
#include "kvsig/util/ByteOrder.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/NumberText.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace kvsig::edf {
namespace {

using Severity = OpenFinding::Severity;

class RecordCheck {
  public:
    RecordCheck(const File& file, const Header& header, int sampleBytes)
        : m_file(file),
          m_header(header),
          m_sampleBytes(sampleBytes),
          m_recordBytes(recordBytes(header, sampleBytes)),
          m_onsets(header) {
        std::int64_t offset = 0;
        for (std::int64_t i = 0; i < header.fileSignals(); ++i) {
            Signal signal;
            signal.offset = offset;
            signal.samples =
                std::max<std::int64_t>(header.signalSamples()[static_cast<std::size_t>(i)], 0);
            signal.annotation = isAnnotation(header, i);
            signal.low = leadingDouble(header.text(digitalMin, i));
            signal.high = leadingDouble(header.text(digitalMax, i));
            offset += signal.samples * sampleBytes;
            m_signals.push_back(signal);
        }
    }

    std::vector<OpenFinding> run() {
        const bool headerFits = m_header.dataOffset() >= fullLength(m_header.fileSignals()) &&
                                m_header.dataOffset() <= m_file.size();
        if (headerFits && m_recordBytes > 0) {
            checkLength();
            checkRecords();
        }
        return std::move(m_findings);
    }

  private:
    struct Signal {
        std::int64_t offset = 0; ///< bytes from the record's start
        std::int64_t samples = 0;
        bool annotation = false;
        double low = 0.0;
        double high = 0.0;
        std::int64_t outside = 0;
    };

    void note(const std::string& text) { m_findings.push_back({Severity::note, text}); }
    void warn(const std::string& text) { m_findings.push_back({Severity::warning, text}); }

    void checkLength() {
        const std::int64_t data = m_file.size() - m_header.dataOffset();
        const std::string countText = m_header.text(recordCount);
        const std::string stated = "number of data records (offset " +
                                   std::to_string(recordCount.offset) + ") is \"" + countText +
                                   "\"";
        const std::int64_t whole = data / m_recordBytes;
        const std::int64_t rest = data % m_recordBytes;
        const std::int64_t count = leadingInteger(countText);
        const std::string held =
            "the data holds " + std::to_string(whole) +
            (rest > 0 ? " and " + std::to_string(rest) + " bytes of a record of " +
                            std::to_string(m_recordBytes)
                      : "");
        if (count == -1)
            warn(stated + ": the recording was not closed; " + held);
        else if (count > whole)
            warn(stated + ", but " + held + ": the end is missing");
        else if (count < whole)
            warn(stated + ", but " + held);
        else if (rest > 0)
            note(std::to_string(rest) + " bytes follow the last data record");
        // The whole recording in one record is common, with the seconds that a recorder counts.
        if (whole == 1 && std::trunc(m_header.duration()) != m_header.duration())
            note("duration of the only data record (offset " +
                 std::to_string(recordDuration.offset) + ") is \"" + m_header.text(recordDuration) +
                 "\", no whole number of seconds");
    }

    void checkRecords() {
        const std::int64_t size = m_file.size();
        if (m_recordBytes > size - m_header.dataOffset())
            return;
        if (m_recordBytes > mostInspectedBytes) {
            note("a data record takes " + std::to_string(m_recordBytes) +
                 " bytes, too many to look at its onsets and samples");
            return;
        }
        m_record.resize(static_cast<std::size_t>(m_recordBytes));
        for (std::int64_t at = m_header.dataOffset();
             at <= size - m_recordBytes &&
             m_file.readAt(at, m_record.data(), m_recordBytes) == m_recordBytes;
             at += m_recordBytes)
            checkRecord();
        const std::vector<OpenFinding> ofOnsets = m_onsets.findings();
        m_findings.insert(m_findings.end(), ofOnsets.begin(), ofOnsets.end());
        reportOutside();
        if (m_nonAscii > 0)
            note(std::to_string(m_nonAscii) + " annotation bytes are not ASCII");
    }

    void checkRecord() {
        bool onsetSeen = false;
        for (Signal& signal : m_signals) {
            if (!signal.annotation) {
                countOutside(signal);
                continue;
            }
            const std::string_view bytes(
                static_cast<const char*>(static_cast<const void*>(m_record.data())) + signal.offset,
                static_cast<std::size_t>(signal.samples * m_sampleBytes));
            m_nonAscii += std::count_if(bytes.begin(), bytes.end(), [](char c) {
                return (static_cast<unsigned char>(c) & 0x80U) != 0;
            });
            if (!onsetSeen)
                m_onsets.add(recordOnset(bytes));
            onsetSeen = true;
        }
    }

    void countOutside(Signal& signal) {
        const double low = std::min(signal.low, signal.high);
        const double high = std::max(signal.low, signal.high);
        const std::byte* bytes = m_record.data() + signal.offset;
        for (std::int64_t i = 0; i < signal.samples; ++i, bytes += m_sampleBytes) {
            const std::int32_t value =
                m_sampleBytes == 2 ? loadLittle16(bytes) : loadLittle24(bytes);
            signal.outside += value < low || value > high ? 1 : 0;
        }
    }

    void reportOutside() {
        std::int64_t signals = 0;
        std::int64_t samples = 0;
        std::string first;
        for (std::size_t i = 0; i < m_signals.size(); ++i) {
            if (m_signals[i].outside == 0)
                continue;
            if (signals++ == 0)
                first = m_header.text(label, static_cast<std::int64_t>(i));
            samples += m_signals[i].outside;
        }
        if (signals > 0)
            warn(std::to_string(samples) + " samples of " + std::to_string(signals) +
                 " signals lie outside their digital range, the first in \"" + first + "\"");
    }

    const File& m_file;
    const Header& m_header;
    int m_sampleBytes;
    std::int64_t m_recordBytes;
    std::vector<Signal> m_signals;
    std::vector<OpenFinding> m_findings;
    std::vector<std::byte> m_record;
    OnsetGrid m_onsets;
    std::int64_t m_nonAscii = 0;
};

} // namespace

std::vector<OpenFinding> recordOddities(const File& file, const Header& header, int sampleBytes) {
    return RecordCheck(file, header, sampleBytes).run();
}

} // namespace kvsig::edf
