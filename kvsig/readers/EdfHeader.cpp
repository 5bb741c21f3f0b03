#include "kvsig/readers/EdfHeader.h"

#include "kvsig/util/NumberText.h"

#include <algorithm>
#include <numeric>

namespace kvsig::edf {
namespace {

Kind kindOf(std::string_view reservedText) {
    if (reservedText.starts_with("EDF+C"))
        return Kind::continuous;
    return reservedText.starts_with("EDF+D") ? Kind::interrupted : Kind::plain;
}

} // namespace

Header::Header(HeaderBlock block) : m_block(std::move(block)) {
    m_dataOffset = leadingInteger(view(headerLength));
    m_fileSignals = leadingInteger(view(signalCount));
    m_recordDuration = leadingDouble(view(recordDuration));
    m_kind = kindOf(view(reserved));
    for (std::int64_t i = 0; i < m_fileSignals; ++i) {
        // In plain EDF every signal is a channel, whatever its label.
        if (m_kind == Kind::plain || view(label, i) != "EDF Annotations")
            m_channels.push_back(i);
        m_signalSamples.push_back(leadingInteger(view(samplesPerRecord, i)));
    }
    m_recordSamples =
        std::accumulate(m_signalSamples.begin(), m_signalSamples.end(), std::int64_t{0});
}

std::string Header::text(Field field) const { return std::string(view(field)); }

std::string Header::text(SignalField field, std::int64_t fileSignal) const {
    return std::string(view(field, fileSignal));
}

std::string_view Header::view(Field field) const {
    return viewHeaderField(m_block, field.offset, field.width);
}

std::string_view Header::view(SignalField field, std::int64_t fileSignal) const {
    return viewHeaderField(m_block, offsetOf(field, fileSignal), field.width);
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
