#include "kvsig/readers/EdfOddities.h"
#include "kvsig/readers/EdfOnset.h"
#include "kvsig/util/ByteOrder.h"
#include "kvsig/util/NumberText.h"

#include <algorithm>
#include <cmath>
#include <optional>
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
          m_recordBytes(recordBytes(header, sampleBytes)) {
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
    }

    void checkRecords() {
        const std::int64_t size = m_file.size();
        constexpr std::int64_t mostBytes = std::int64_t{256} << 20;
        if (m_recordBytes > std::min(size, mostBytes))
            return;
        m_record.resize(static_cast<std::size_t>(m_recordBytes));
        std::int64_t index = 0;
        for (std::int64_t at = m_header.dataOffset();
             at <= size - m_recordBytes &&
             m_file.readAt(at, m_record.data(), m_recordBytes) == m_recordBytes;
             at += m_recordBytes)
            checkRecord(index++);
        reportOnsets(index);
        reportOutside();
        if (m_nonAscii > 0)
            note(std::to_string(m_nonAscii) + " annotation bytes are not ASCII");
    }

    void checkRecord(std::int64_t index) {
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
                checkOnset(index, recordOnset(bytes));
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

    // Every record starts where the one before it ends; the first on the second of the start time.
    void checkOnset(std::int64_t index, std::optional<double> onset) {
        if (!onset) {
            ++m_withoutOnset;
            return;
        }
        if (index == 0)
            m_firstOnset = *onset;
        constexpr double tolerance = 1e-4; // seconds; onsets are written with few decimals
        if (m_lastOnset) {
            const double jump = *onset - (*m_lastOnset + m_header.duration());
            if (std::abs(jump) > tolerance) {
                if (m_jumps++ == 0)
                    m_firstJump = index - 1;
                if (std::abs(jump) > std::abs(m_largestJump))
                    m_largestJump = jump;
            }
        }
        m_lastOnset = onset;
    }

    void reportOnsets(std::int64_t records) {
        if (m_firstOnset != 0.0)
            note("the first data record begins " + fixedText(m_firstOnset, 6) +
                 " s after the start time");
        if (m_jumps > 0)
            warn(std::to_string(m_jumps) +
                 " data records do not begin where the one before ends, the first behind record " +
                 std::to_string(m_firstJump) + "; the largest gap is " +
                 shortestText(std::round(m_largestJump * 1e6) / 1e6) + " s");
        if (m_withoutOnset > 0)
            note(std::to_string(m_withoutOnset) + " of " + std::to_string(records) +
                 " data records have no onset in their annotation signal");
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
    std::int64_t m_nonAscii = 0;
    std::int64_t m_withoutOnset = 0;
    std::int64_t m_jumps = 0;
    std::int64_t m_firstJump = 0;
    double m_firstOnset = 0.0;
    double m_largestJump = 0.0;
    std::optional<double> m_lastOnset;
};

} // namespace

std::vector<OpenFinding> recordOddities(const File& file, const Header& header, int sampleBytes) {
    return RecordCheck(file, header, sampleBytes).run();
}

} // namespace kvsig::edf
