#include "support/BlackrockFile.h"

#include <utility>

namespace kvsig::test {
namespace {

// 2014-03-26 14:07:09.250, a Wednesday.
void putStart(Bytes& bytes, std::size_t offset, int hour) {
    for (const int part : {2014, 3, 3, 26, hour, 7, 9, 250}) {
        bytes.put(offset, static_cast<std::uint16_t>(part));
        offset += 2;
    }
}

} // namespace

Bytes BlackrockFile::made() const {
    Bytes out;
    out.put(0, m_id, 8);
    if (bare()) {
        out.put(8, "2 kS/s", 16).put(24, m_period);
        out.put(28, static_cast<std::uint32_t>(m_channels.size()));
        for (std::size_t i = 0; i < m_channels.size(); ++i)
            out.add(static_cast<std::uint32_t>(i + 1));
    } else {
        out.add(static_cast<std::uint8_t>(m_major)).add(static_cast<std::uint8_t>(m_minor));
        out.add(static_cast<std::uint32_t>(headerBytes())).put(14, "2 kS/s", 16);
        // What anonymising leaves behind the first NUL is no text.
        out.put(30, std::string("left arm\0stray", 14), 256).put(286, m_period).put(290, m_ticks);
        putStart(out, 294, 14);
        out.put(310, static_cast<std::uint32_t>(m_channels.size()));
    }
    for (std::size_t i = 0; i < m_channels.size() && !bare(); ++i) {
        const std::size_t base = 314 + 66 * i;
        const Channel& facts = m_channels[i];
        out.put(base, "CC", 2).put(base + 2, static_cast<std::uint16_t>(i + 1));
        out.put(base + 4, facts.name, 16);
        std::size_t place = base + 22;
        for (const int limit :
             {facts.digitalLow, facts.digitalHigh, facts.analogueLow, facts.analogueHigh}) {
            out.put(place, static_cast<std::int16_t>(limit));
            place += 2;
        }
        out.put(base + 30, facts.units, 16).put(base + 46, std::uint32_t{300});
        out.padTo(base + 66);
    }
    std::int64_t index = 0;
    for (const Block& block : m_blocks) {
        if (wide())
            out.add(std::uint8_t{1}).add(block.stamp).add(static_cast<std::uint32_t>(block.said));
        else if (!bare())
            out.add(std::uint8_t{1})
                .add(static_cast<std::uint32_t>(block.stamp))
                .add(static_cast<std::uint32_t>(block.said));
        for (std::int64_t i = 0; i < block.frames; ++i, ++index)
            for (std::size_t c = 0; c < m_channels.size(); ++c)
                out.add(static_cast<std::int16_t>(rampCount(static_cast<int>(c), index)));
    }
    return out.add(m_tail);
}

Bytes& BlackrockEventFile::packet(std::uint64_t stamp, std::uint16_t id) {
    Bytes& made = m_packets.emplace_back();
    if (m_wide)
        made.add(stamp);
    else
        made.add(static_cast<std::uint32_t>(stamp));
    return made.add(id);
}

std::string BlackrockEventFile::bytes() const {
    Bytes out;
    out.put(0, m_wide ? "BREVENTS" : "NEURALEV", 8).put(8, std::uint8_t{2}).put(9, std::uint8_t{3});
    out.put(12, static_cast<std::uint32_t>(336 + 32 * m_extensions.size()));
    out.put(16, static_cast<std::uint32_t>(packetBytes)).put(20, m_ticks).put(24, m_ticks);
    putStart(out, 28, m_hour);
    out.put(332, static_cast<std::uint32_t>(m_extensions.size()));
    for (const Bytes& extension : m_extensions)
        out.put(out.size(), extension.str(), 32);
    for (const Bytes& packet : m_packets)
        out.put(out.size(), packet.str(), packetBytes);
    return out.str();
}

} // namespace kvsig::test
