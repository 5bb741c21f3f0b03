#include "support/MicromedFile.h"

namespace kvsig::test {
namespace {

struct Zone {
    const char* name;
    std::size_t length;
};
// In the order of the file; room for six electrodes.
constexpr Zone zones[] = {
    {"ORDER", 16},  {"LABCOD", 768}, {"NOTE", 440},   {"FLAGS", 40},   {"TRONCA", 40},
    {"IMPED_B", 4}, {"IMPED_E", 4},  {"MONTAGE", 8},  {"COMPRESS", 4}, {"AVERAGE", 4},
    {"HISTORY", 4}, {"DVIDEO", 4},   {"EVENT A", 36}, {"EVENT B", 36}, {"TRIGGER", 36},
};

} // namespace

std::int64_t MicromedFile::stored(int channel, long index) const {
    const Channel& facts = m_channels[static_cast<std::size_t>(channel)];
    const std::int64_t ramp = rampCount(channel, index, m_bytes == 1 ? 113 : 30011);
    return m_bytes == 1 ? ramp + 128 : facts.low < 0 ? ramp : ramp + 32768;
}

std::size_t MicromedFile::zoneStart(const std::string& name) {
    std::size_t start = 640;
    for (const Zone& zone : zones) {
        if (zone.name == name)
            break;
        start += zone.length;
    }
    return start;
}

Bytes MicromedFile::made() const {
    Bytes out;
    out.put(0, "* MICROMED  Brain-Quick file *", 32, ' ').put(32, "Ward 7", 32, ' ');
    out.put(64, "Mustermann", 22, ' ').put(86, "Erika", 20, '\0');
    for (const int part : {8, 12, 64})
        out.add(static_cast<std::uint8_t>(part)); // born 1964.08.12
    out.padTo(128);
    for (const int part : {4, 7, 126, 23, 5, 7})
        out.add(static_cast<std::uint8_t>(part)); // 2026.07.04 23:05:07
    const auto channels = static_cast<std::uint16_t>(m_channels.size());
    out.put(138, static_cast<std::uint32_t>(dataOffset())).put(142, channels);
    out.put(144, static_cast<std::uint16_t>(channels * m_bytes));
    out.put(146, static_cast<std::uint16_t>(m_rate)).put(148, static_cast<std::uint16_t>(m_bytes));
    out.put(175, std::uint8_t{4});
    std::size_t base = 176;
    for (const Zone& zone : zones) {
        out.put(base, zone.name, 8, ' ');
        out.put(base + 8, static_cast<std::uint32_t>(zoneStart(zone.name)));
        out.put(base + 12, static_cast<std::uint32_t>(zone.length));
        base += 16;
    }
    for (std::size_t i = 0; i < m_channels.size(); ++i) {
        const Channel& facts = m_channels[i];
        const std::size_t record = m_channels.size() - 1 - i; // out of order on purpose
        out.put(zoneStart("ORDER") + 2 * i, static_cast<std::uint16_t>(record));
        const std::size_t at = zoneStart("LABCOD") + 128 * record;
        out.put(at, std::uint8_t{1}).put(at + 2, facts.positive, 6, ' ');
        out.put(at + 8, facts.negative, 6, '\1').put(at + 14, facts.low).put(at + 18, facts.high);
        out.put(at + 22, facts.ground).put(at + 26, facts.physicalLow);
        out.put(at + 30, facts.physicalHigh).put(at + 34, static_cast<std::int16_t>(facts.unit));
        out.put(at + 44, static_cast<std::uint16_t>(facts.coefficient));
    }
    const auto fill = [&out](const char* zone, const Bytes& bytes) {
        out.put(zoneStart(zone), bytes.str(), bytes.size());
    };
    Bytes triggers = m_triggers;
    triggers.add(std::uint32_t{0xFFFFFFFF}).add(std::uint16_t{0xFFFF});
    fill("NOTE", m_notes);
    fill("FLAGS", m_flags);
    fill("EVENT A", m_eventsA);
    fill("EVENT B", m_eventsB);
    fill("TRONCA", m_pieces);
    fill("TRIGGER", triggers);
    out.padTo(dataOffset());
    std::string samples;
    for (long i = 0; i < m_frames; ++i)
        for (int c = 0; c < channels; ++c)
            for (int byte = 0; byte < m_bytes; ++byte)
                samples.push_back(static_cast<char>(stored(c, i) >> (8 * byte) & 0xFF));
    return out.add(samples);
}

} // namespace kvsig::test
