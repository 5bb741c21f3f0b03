#include "support/NervusFile.h"

#include <chrono>
#include <cmath>

namespace kvsig::test {
namespace {

constexpr std::size_t headBytes = 172212;
constexpr std::uint32_t firstSection = 100;

std::string wide(const std::string& text) {
    std::string units;
    for (const char c : text)
        units += {c, '\0'};
    return units;
}

// "{00112233-4455-6677-8899-AABBCCDDEEFF}", whose first three groups are stored backwards.
std::string guid(const std::string& text) {
    std::string bytes;
    for (const std::size_t at :
         {7U, 5U, 3U, 1U, 12U, 10U, 17U, 15U, 20U, 22U, 25U, 27U, 29U, 31U, 33U, 35U})
        bytes.push_back(static_cast<char>(std::stoi(text.substr(at, 2), nullptr, 16)));
    return bytes;
}

} // namespace

double oleDays(int year, int month, int day, double secondOfDay) {
    const std::chrono::sys_days date{std::chrono::year(year) / month / day};
    return static_cast<double>(date.time_since_epoch().count() + 25569) + secondOfDay / 86400;
}

NervusFile& NervusFile::segment(double days, double seconds) {
    m_segments.emplace_back(days, seconds);
    return *this;
}

NervusFile& NervusFile::event(const std::string& type, double days, double extra, double duration,
                              const std::string& text, const std::string& label) {
    Bytes packet;
    packet.add(guid("{B799F680-72A4-11D3-93D3-00500400C148}"));
    packet.add(std::uint64_t{272 + 2 * text.size()});
    packet.put(32, days).put(40, extra).put(48, duration).put(104, wide("user"), 24);
    packet.put(128, std::uint64_t{text.size()}).put(136, guid(type), 16);
    packet.put(168, wide(label), 64).padTo(264);
    m_events += packet.add(wide(text)).padTo(272 + 2 * text.size()).str();
    return *this;
}

std::string NervusFile::seriesPacket(double firstRate) const {
    Bytes packet;
    packet.add(guid(series)).put(752, static_cast<std::uint32_t>(m_channels.size()));
    for (std::size_t i = 0; i < m_channels.size(); ++i) {
        const std::size_t base = 760 + 552 * i;
        const Channel& facts = m_channels[i];
        packet.put(base, wide(facts.label), 128).put(base + 192, wide(facts.reference), 64);
        packet.put(base + 272, i == 0 ? firstRate : facts.rate).put(base + 280, facts.resolution);
        packet.put(base + 292, facts.offset).padTo(base + 552);
    }
    return packet.str();
}

std::string NervusFile::patientBytes() const {
    Bytes out;
    out.add(guid(patient)).add(std::uint64_t{0}).add(std::uint64_t{m_values.size()});
    out.add(std::uint64_t{m_texts.size()});
    for (const auto& [id, number] : m_values)
        out.add(static_cast<std::uint64_t>(id)).add(number);
    for (const auto& [id, text] : m_texts)
        out.add(static_cast<std::uint64_t>(id)).add(std::uint64_t{text.size()});
    for (const auto& item : m_texts)
        out.add(wide(item.second)).add(std::uint16_t{0});
    return out.str();
}

NervusFile::Made NervusFile::make() const {
    struct Entry {
        std::uint32_t section;
        std::size_t offset, bytes;
    };
    Made made;
    Bytes out;
    std::vector<std::string> names = {"SegmentStream", "InfoChangeStream", series,
                                      patient,         "Events",           "Unused"};
    for (std::size_t i = 0; i < m_channels.size(); ++i)
        names.push_back(std::to_string(i));
    out.put(172, static_cast<std::uint32_t>(names.size()));
    for (std::size_t i = 0; i < names.size(); ++i)
        out.put(176 + 84 * i, wide(names[i]), 80).add(firstSection + static_cast<std::uint32_t>(i));
    out.padTo(headBytes + 100);

    std::vector<Entry> entries;
    // A section in two pieces, so that what needs more than one must join them.
    const auto addSection = [&](std::uint32_t index, const std::string& bytes, std::size_t cut) {
        made.places[names[index]] = out.size();
        made.boundaries.push_back(out.size());
        for (const std::string& piece :
             {bytes.substr(0, cut), bytes.substr(std::min(cut, bytes.size()))})
            if (!piece.empty()) {
                entries.push_back({firstSection + index, out.size(), piece.size()});
                out.add(piece).add("gap");
            }
    };
    Bytes segments;
    for (const auto& [days, seconds] : m_segments)
        segments.add(days)
            .add(std::uint64_t{0})
            .add(seconds)
            .padTo((segments.size() / 152 + 1) * 152);
    Bytes changes;
    std::string packets(9, 'x'); // a packet need not stand at the start
    if (!m_listed)
        packets.clear();
    std::vector<double> rates = m_packets;
    rates.insert(rates.begin(), m_channels.empty() ? 0 : m_channels[0].rate);
    for (const double rate : rates) {
        const std::string packet = seriesPacket(rate);
        changes.add(guid(patient)).padTo(changes.size() + 32);
        if (m_listed)
            changes.add(guid(series))
                .add(1.0)
                .add(0.0)
                .add(std::uint64_t{packets.size()})
                .add(std::uint64_t{packet.size()});
        packets += packet;
    }
    addSection(0, segments.str(), 152);
    addSection(1, changes.str(), 60);
    addSection(2, packets, m_listed ? 777 : packets.size());
    addSection(3, patientBytes(), 1 << 20);
    addSection(4, m_events, 300);
    addSection(5, "nobody reads this", 5);

    std::vector<std::pair<std::size_t, std::int64_t>> pieces; // channel and samples
    std::vector<std::int64_t> done(m_channels.size());
    for (const auto& segment : m_segments) {
        const double seconds = segment.second;
        std::vector<std::int64_t> ends(done);
        for (double from = 0; from < seconds; ++from)
            for (std::size_t c = 0; c < m_channels.size(); ++c) {
                const double to = std::min(from + 1, seconds);
                const auto most = m_held.contains(c) ? m_held.at(c) : std::int64_t{1} << 40;
                const auto end = std::min(most, ends[c] + std::lround(to * m_channels[c].rate));
                if (end > done[c])
                    pieces.emplace_back(c, end - done[c]);
                done[c] = std::max(done[c], end);
            }
    }
    const std::size_t count = entries.size() + pieces.size();
    const std::size_t blocks = (count + m_perBlock - 1) / m_perBlock;
    const std::size_t index = out.size();
    std::size_t data = index + 16 * blocks + 24 * count;
    made.places["index"] = index;
    made.places["data"] = data;
    for (const auto& [channel, samples] : pieces) {
        const std::size_t bytes = 2 * static_cast<std::size_t>(samples);
        entries.push_back({firstSection + 6 + static_cast<std::uint32_t>(channel), data, bytes});
        data += bytes;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t left = std::min(m_perBlock, count - i);
        if (i % m_perBlock == 0)
            out.add(std::uint64_t{left});
        if (i < m_perBlock)
            made.boundaries.insert(made.boundaries.end(),
                                   {out.size(), out.size() + 8, out.size() + 16, out.size() + 20});
        out.add(std::uint64_t{entries[i].section}).add(std::uint64_t{entries[i].offset});
        out.add(static_cast<std::uint32_t>(entries[i].bytes));
        out.add(static_cast<std::uint32_t>(entries[i].bytes));
        if ((i + 1) % m_perBlock == 0 || i + 1 == count)
            out.add(std::uint64_t{i + 1 == count ? 0 : out.size() + 8});
    }
    std::vector<std::int64_t> next(m_channels.size());
    for (const auto& [channel, samples] : pieces)
        for (std::int64_t i = 0; i < samples; ++i)
            out.add(
                static_cast<std::int16_t>(rampCount(static_cast<int>(channel), next[channel]++)));
    out.put(24, static_cast<std::uint32_t>(index));
    out.put(172208, static_cast<std::uint32_t>(count));
    for (const std::size_t field : {0U, 24U, 28U, 172U, 176U, 256U, 260U, 172208U, 172212U})
        made.boundaries.push_back(field);
    made.boundaries.push_back(made.places["data"]);
    made.bytes = out.str();
    return made;
}

} // namespace kvsig::test
