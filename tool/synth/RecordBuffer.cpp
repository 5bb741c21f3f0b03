#include "tool/synth/RecordBuffer.h"

#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <cstring>

namespace kvsig::tool {

RecordBuffer::RecordBuffer(const EdfHeader& header)
    : m_width(header.bytesPerSample()), m_bytes(header.recordBytes()) {
    std::size_t offset = 0;
    for (const EdfSignal& signal : header.signals) {
        const auto size = static_cast<std::size_t>(signal.samplesPerRecord) * m_width;
        const double span =
            static_cast<double>(signal.digitalMaximum) - static_cast<double>(signal.digitalMinimum);
        m_slots.push_back({offset, size, span / (signal.physicalMaximum - signal.physicalMinimum),
                           signal.physicalMinimum, span, signal.digitalMinimum});
        offset += size;
    }
}

void RecordBuffer::put(std::size_t signal, std::size_t first, std::span<const float> values) {
    const Slot& slot = m_slots[signal];
    std::byte* at = m_bytes.data() + slot.offset + first * m_width;
    for (const float value : values) {
        const double steps =
            (static_cast<double>(value) - slot.physicalMinimum) * slot.perUnit + 0.5;
        const std::int32_t digital =
            saturate<std::int32_t>(std::clamp(steps, 0.0, slot.digitalSpan)) + slot.digitalMinimum;
        const auto bits = static_cast<std::uint32_t>(digital);
        for (std::size_t i = 0; i < m_width; ++i)
            *at++ = static_cast<std::byte>(bits >> 8 * i);
    }
}

void RecordBuffer::putBytes(std::size_t signal, std::string_view bytes) {
    const Slot& slot = m_slots[signal];
    std::byte* at = m_bytes.data() + slot.offset;
    const std::size_t used = std::min(bytes.size(), slot.size);
    std::memcpy(at, bytes.data(), used);
    std::fill(at + used, at + slot.size, std::byte{0});
}

} // namespace kvsig::tool
