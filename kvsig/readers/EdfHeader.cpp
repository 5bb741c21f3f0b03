#include "kvsig/readers/EdfHeader.h"

#include "kvsig/util/NumberText.h"

#include <algorithm>
#include <numeric>

namespace kvsig::edf {
namespace {

Kind kindOf(const std::string& reservedText) {
    if (reservedText.starts_with("EDF+C"))
        return Kind::continuous;
    return reservedText.starts_with("EDF+D") ? Kind::interrupted : Kind::plain;
}

} // namespace

Header::Header(HeaderBlock block) : m_block(std::move(block)) {
    m_dataOffset = leadingInteger(text(headerLength));
    m_fileSignals = leadingInteger(text(signalCount));
    m_recordDuration = leadingDouble(text(recordDuration));
    m_kind = kindOf(text(reserved));
    for (std::int64_t i = 0; i < m_fileSignals; ++i) {
        // In plain EDF every signal is a channel, whatever its label.
        if (m_kind == Kind::plain || text(label, i) != "EDF Annotations")
            m_channels.push_back(i);
        m_signalSamples.push_back(leadingInteger(text(samplesPerRecord, i)));
    }
    m_recordSamples =
        std::accumulate(m_signalSamples.begin(), m_signalSamples.end(), std::int64_t{0});
}

std::string Header::text(Field field) const {
    return readHeaderField(m_block, field.offset, field.width);
}

std::string Header::text(SignalField field, std::int64_t fileSignal) const {
    return readHeaderField(m_block, offsetOf(field, fileSignal), field.width);
}

std::int64_t Header::offsetOf(SignalField field, std::int64_t fileSignal) const {
    return fixedLength + field.before * m_fileSignals + field.width * fileSignal;
}

bool declaresPlus(const Header& header) {
    const std::string text = header.text(reserved);
    return text.starts_with("EDF+") || text.starts_with("BDF+");
}

bool isAnnotation(const Header& header, std::int64_t fileSignal) {
    const std::string text = header.text(label, fileSignal);
    return text == "EDF Annotations" || text == "BDF Annotations";
}

std::int64_t recordBytes(const Header& header, int sampleBytes) {
    std::int64_t samples = 0;
    for (const std::int64_t count : header.signalSamples())
        samples += std::max<std::int64_t>(count, 0);
    return samples * sampleBytes;
}

} // namespace kvsig::edf
