#include "support/NeuroscanFile.h"

#include <cmath>

namespace kvsig::test {

std::int32_t NeuroscanFile::value(int channel, long index) const {
    if (!m_smooth)
        return rampCount(channel, index);
    return static_cast<std::int32_t>(std::lround(
        3000.0 * std::sin(0.05 * static_cast<double>(index) + channel) - 2000.0 * channel));
}

std::size_t NeuroscanFile::tableOffset() const {
    return dataOffset() + static_cast<std::size_t>(m_frames) * m_channels.size() *
                              static_cast<std::size_t>(m_bytes);
}

Bytes NeuroscanFile::made() const {
    const std::size_t recordBytes = m_tableType == 1 ? 8 : 19;
    const std::size_t trailerOffset = tableOffset() + 9 + recordBytes * m_events.size();
    Bytes out;
    out.put(0, "Version 3.0", 12);
    if (m_trailer >= 0)
        out.put(12, static_cast<std::int32_t>(trailerOffset));
    out.put(21, "P-0815", 20).put(41, "Oper", 20).put(61, "Doc", 20).put(121, "Jane Doe", 20);
    out.put(143, "F", 1).put(144, "R", 1).put(145, "none", 20).put(205, "rest", 20);
    out.put(225, m_date, 10).put(235, "23:05:07", 12);
    out.put(370, static_cast<std::uint16_t>(m_channels.size())).put(376, std::uint16_t{200});
    out.put(864, static_cast<std::uint32_t>(m_count < 0 ? m_frames : m_count));
    out.put(885, std::uint8_t{1}).put(886, static_cast<std::uint32_t>(tableOffset()));
    out.put(894, m_block > 0 ? m_block * m_bytes : m_channelOffset).padTo(900);
    for (const Channel& facts : m_channels) {
        const std::size_t base = out.size();
        out.put(base, facts.label, 10).put(base + 47, static_cast<std::int16_t>(facts.baseline));
        out.put(base + 59, facts.sensitivity).put(base + 71, facts.calibration);
    }
    std::string samples;
    const auto addSample = [&](std::size_t channel, long index) {
        const std::int32_t stored = value(static_cast<int>(channel), index);
        for (int byte = 0; byte < m_bytes; ++byte)
            samples.push_back(static_cast<char>(stored >> (8 * byte) & 0xFF));
    };
    const long step = m_block > 0 ? m_block : 1;
    for (long first = 0; first < m_frames; first += step)
        for (std::size_t c = 0; c < m_channels.size(); ++c)
            for (long i = first; i < std::min(first + step, m_frames); ++i)
                addSample(c, i);
    out.add(samples);
    out.add(static_cast<std::uint8_t>(m_tableType));
    out.add(static_cast<std::uint32_t>(recordBytes * m_events.size())).add(std::uint32_t{0});
    const auto frameBytes = static_cast<long>(m_channels.size()) * m_bytes;
    for (const Event& event : m_events) {
        const std::size_t base = out.size();
        out.add(static_cast<std::uint16_t>(event.code)).add(static_cast<std::uint8_t>(event.key));
        out.add(static_cast<std::uint8_t>(event.keypadAndStatus));
        out.add(static_cast<std::uint32_t>(m_tableType == 3 ? event.sample
                                                            : static_cast<long>(dataOffset()) +
                                                                  event.sample * frameBytes));
        out.padTo(base + recordBytes);
    }
    if (m_trailer >= 0)
        out.put(trailerOffset, "NSI TFF", 8)
            .put(trailerOffset + 52, static_cast<std::uint8_t>(m_trailer))
            .padTo(trailerOffset + 60);
    return out;
}

} // namespace kvsig::test
