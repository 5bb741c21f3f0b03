#include "kvsig/readers/NervusChannels.h"

#include "kvsig/readers/NervusLayout.h"
#include "kvsig/util/Limits.h"

#include <algorithm>
#include <set>
#include <utility>

namespace kvsig::nervus {
namespace {

constexpr std::int64_t changesAtOnce = 1024;

/// A packet's place in its section.
struct Place {
    std::int64_t offset = 0;
    std::int64_t size = 0;
};

struct Packet {
    std::vector<ChannelFacts> channels; ///< those that fit
    std::int64_t said = 0;
};

Packet readPacket(const HeaderFile& file, const Section& section, Place place) {
    const HeaderBlock head =
        section.read(file, place.offset, std::min(place.size, series::channels));
    Packet packet;
    packet.said = valueOf(head, series::channelCount);
    const std::int64_t room = std::min(place.size, section.length - place.offset);
    const std::int64_t fit = std::min({packet.said, std::int64_t{mostChannels},
                                       (room - series::channels) / series::channelBytes});
    if (fit < 1)
        return packet;
    const HeaderBlock table =
        section.read(file, place.offset + series::channels, fit * series::channelBytes);
    for (std::int64_t i = 0; i < fit; ++i) {
        const std::int64_t base = i * series::channelBytes;
        packet.channels.push_back(
            {valueOf(table, series::label, base), valueOf(table, series::reference, base),
             valueOf(table, series::rate, base), valueOf(table, series::resolution, base),
             valueOf(table, series::offset, base)});
    }
    return packet;
}

// Where the list of changes says that packets of channels stand.
std::vector<Place> listedPackets(const HeaderFile& file, const Container& container,
                                 std::vector<std::string>& oddities) {
    const Section& changes = container.section(changeTag);
    const std::int64_t length = container.section(seriesTag).length;
    std::vector<Place> places;
    std::set<std::uint64_t> seen;
    for (std::int64_t at = 0; at < changes.length && file.fault().empty();
         at += changesAtOnce * change::bytes) {
        const HeaderBlock entries = changes.read(file, at, changesAtOnce * change::bytes);
        const auto held = static_cast<std::int64_t>(entries.bytes().size());
        for (std::int64_t i = 0; i + change::bytes <= held; i += change::bytes) {
            const std::uint64_t offset = valueOf(entries, change::offset, i);
            const std::uint64_t size = valueOf(entries, change::size, i);
            if (size == 0 || guidAt(entries, i + change::guid) != seriesTag)
                continue;
            if (std::cmp_greater_equal(offset, length))
                oddities.push_back("a packet of channels at offset " + std::to_string(offset) +
                                   " is outside their section of " + std::to_string(length) +
                                   " bytes");
            else if (seen.insert(offset).second)
                places.push_back(
                    {static_cast<std::int64_t>(offset),
                     std::cmp_less(size, length) ? static_cast<std::int64_t>(size) : length});
            if (places.size() + oddities.size() > mostChannelPackets)
                return places;
        }
    }
    return places;
}

// Of a packet that was cut, `complete` false, only what it holds can differ.
std::string differenceOf(const std::vector<ChannelFacts>& first,
                         const std::vector<ChannelFacts>& other, bool complete) {
    if (complete && first.size() != other.size())
        return std::to_string(other.size()) + " channels after " + std::to_string(first.size());
    const auto alike = [](const ChannelFacts& a, const ChannelFacts& b) {
        return a.label == b.label && a.reference == b.reference && a.rate == b.rate &&
               a.resolution == b.resolution;
    };
    const auto differing =
        std::mismatch(first.begin(), first.end(), other.begin(), other.end(), alike).first;
    const auto held = static_cast<std::ptrdiff_t>(std::min(first.size(), other.size()));
    return differing - first.begin() == held
               ? std::string()
               : "channel " + std::to_string(differing - first.begin() + 1) + " in another way";
}

std::string changedText(const std::string& place, const std::string& difference) {
    return place + " describes " + difference + ": recordings whose channels change are not read";
}

} // namespace

ChannelTable readChannels(const HeaderFile& file, const Container& container) {
    ChannelTable table;
    const auto failed = [&table](int error, const std::string& fault) {
        table.error = error;
        table.fault = fault;
        return std::move(table);
    };
    const Section& section = container.section(seriesTag);
    if (section.length == 0)
        return failed(2, "it has no section of channels");
    std::vector<Place> places = listedPackets(file, container, table.oddities);
    if (places.empty() && !table.oddities.empty())
        return failed(2, table.oddities.front());
    if (places.empty()) {
        if (guidAt(section.read(file, 0, 16), 0) != seriesTag)
            return failed(2, "no change lists its channels, and their section does not begin with "
                             "their id");
        places.push_back({0, section.pieces.front().length});
        table.oddities.emplace_back(
            "no change lists its channels: they are taken from the start of their section");
    }
    std::int64_t bytes = 0;
    bool isCut = false; // the packet that the table is of
    for (std::size_t i = 0; i < places.size(); ++i) {
        const std::string place = "packet " + std::to_string(i + 1) + " of its channels";
        Packet packet = readPacket(file, section, places[i]);
        const auto fit = static_cast<std::int64_t>(packet.channels.size());
        bytes += fit * series::channelBytes;
        if (bytes > section.length)
            return failed(2, place + " overlaps another");
        if (fit < packet.said)
            table.oddities.push_back(place + " says " + std::to_string(packet.said) +
                                     " channels and holds " + std::to_string(fit));
        // The table is that of the first packet that describes any.
        if (table.channels.empty()) {
            table.channels = std::move(packet.channels);
            isCut = fit < packet.said;
            continue;
        }
        const std::string difference =
            differenceOf(table.channels, packet.channels, fit == packet.said && !isCut);
        if (!difference.empty())
            return failed(3, changedText(place, difference));
        if (isCut && packet.channels.size() > table.channels.size()) {
            table.channels = std::move(packet.channels);
            isCut = fit < packet.said;
        }
    }
    if (table.channels.empty())
        return failed(2, "no channel is described in its " + std::to_string(places.size()) +
                             " packets of channels");
    return table;
}

} // namespace kvsig::nervus
