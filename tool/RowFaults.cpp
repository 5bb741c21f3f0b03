#include "tool/RowFaults.h"

#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/names/ScalpGrid.h"
#include "kvsig/util/Text.h"
#include "tool/PhysicalValues.h"
#include "tool/Words.h"

#include <algorithm>

namespace kvsig::tool {
namespace {

// A recording without scalp electrodes counts as referential, against nothing in particular.
bool hasScalpReference(IDataReader& reader) {
    if (!reader.isMapReferential())
        return false;
    for (int i = 0; i < reader.channelCount(); ++i)
        if (IndexOf1020(reader.grid1(i)) >= 0)
            return true;
    return false;
}

} // namespace

std::string recordedReference(const Recording& recording, int channel) {
    const Recording::Place place = recording.placeOf(channel);
    const std::string stated = place.reader->grid2(place.channel);
    return stated.empty() && hasScalpReference(*place.reader) ? place.reader->refGrid() : stated;
}

std::optional<std::string> oneReference(const Recording& recording,
                                        const std::vector<int>& channels) {
    if (channels.empty())
        return std::nullopt;
    std::string first = recordedReference(recording, channels.front());
    const bool same = std::all_of(channels.begin(), channels.end(), [&](int channel) {
        return equalNoCase(recordedReference(recording, channel), first);
    });
    return same ? std::optional(std::move(first)) : std::nullopt;
}

// Where a recording has so many channels that a channel's number has the average's bit, it has no
// averages.
std::vector<int> channelsOfReference(const SourceMontage& montage, IDataReader& reader,
                                     int channel2) {
    if (channel2 < 0)
        return {};
    if (channel2 < reader.channelCount())
        return {channel2};
    if ((channel2 & G1G2Source::averageBit) != 0)
        if (const AvgSource* average = montage.avgRef(channel2 & ~G1G2Source::averageBit))
            return average->getAvgChannels();
    return {};
}

std::vector<int> channelsOfRow(const SourceMontage& montage, IDataReader& reader,
                               const G1G2Source& row) {
    std::vector<int> channels = channelsOfReference(montage, reader, row.channel2());
    channels.insert(channels.begin(), row.channel1());
    return channels;
}

// One scale serves a whole derivation, so its channels must share type, units and calibration where
// the scale depends on them.
std::string mixFault(const Recording& recording, const ChannelNames& names,
                     const std::vector<int>& channels) {
    IDataReader& reader = *recording.reader;
    const int first = channels.front();
    const auto named = [&](int channel) {
        return names.label(channel) + " (" + toUtf8(reader.channelUnits(channel)) + ")";
    };
    const bool microvolts = reader.channelType(first) != otherUnitType;
    const std::string units = reader.channelUnits(first);
    for (const int channel : channels)
        if (reader.channelType(channel) != reader.channelType(first) ||
            physicalMapOf(reader, channel).gain != physicalMapOf(reader, first).gain ||
            (!microvolts && viewOf(reader.channelUnits(channel)) != units))
            return named(channel) + " and " + named(first) +
                   " differ in units or scale and cannot be combined";
    return {};
}

// Electrodes are compared by their channels, which holds when these have one reference: F3-A2 less
// C4-A1 is not F3-C4.
std::string referenceFault(const Recording& recording, const ChannelNames& names,
                           const std::vector<int>& channels) {
    if (channels.size() < 2)
        return {};
    const int first = channels.front();
    const std::string reference = recordedReference(recording, first);
    for (const int channel : channels) {
        const std::string other = recordedReference(recording, channel);
        if (equalNoCase(other, reference))
            continue;
        return names.label(first) + " and " + names.label(channel) +
               (other.empty() || reference.empty() ? " are not known to have one reference"
                                                   : " were recorded against different electrodes");
    }
    return {};
}

std::string rowFault(const Recording& recording, const ChannelNames& names,
                     const std::vector<int>& channels) {
    std::string fault = mixFault(recording, names, channels);
    return fault.empty() ? referenceFault(recording, names, channels) : fault;
}

} // namespace kvsig::tool
