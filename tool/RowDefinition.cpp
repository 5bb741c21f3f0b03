#include "tool/RowDefinition.h"

#include "kvsig/montage/names/References.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>

namespace kvsig::tool {
namespace {

using Kind = RowDefinition::Kind;

RowPart plainPart(const std::string& text, const ChannelNames& names) {
    const std::string name(trimmed(text));
    return {name, names.find(name), std::nullopt};
}

// A term of an average; a weight that is no number is NaN.
RowPart termOf(const std::string& text, const ChannelNames& names) {
    RowPart plain = plainPart(text, names);
    const std::size_t colon = text.rfind(':');
    if (plain.channel >= 0 || colon == std::string::npos)
        return plain;
    RowPart part = plainPart(text.substr(0, colon), names);
    double weight = 0.0;
    const bool isNumber = wholeDouble(trimmed(std::string_view(text).substr(colon + 1)), weight);
    part.weight = isNumber && std::isfinite(weight) ? weight : std::nan("");
    return part;
}

std::string globalAverage(const std::string& name) {
    for (const AvgRefDefn* row = gGlobalAvgRefs; row->pszName; ++row)
        if (equalNoCase(row->pszName, name))
            return row->pszDefn;
    return {};
}

RowDefinition averageReading(const std::string& text, const ChannelNames& names) {
    RowDefinition reading{Kind::average, {}, text, {}};
    const std::string global = globalAverage(text);
    for (const std::string& term : splitWords(global.empty() ? text : global, '+'))
        reading.parts.push_back(termOf(term, names));
    return reading;
}

RowDefinition differenceReading(const std::string& first, const std::string& second,
                                const ChannelNames& names) {
    RowDefinition reading{Kind::difference, {plainPart(second, names)}, {}, {}};
    const bool average = second.find('+') != std::string::npos || !globalAverage(second).empty();
    if (reading.parts.front().channel < 0 && average) {
        reading = averageReading(second, names);
        reading.kind = Kind::averageDifference;
    }
    reading.parts.insert(reading.parts.begin(), plainPart(first, names));
    return reading;
}

std::ptrdiff_t knownParts(const RowDefinition& reading) {
    return std::count_if(reading.parts.begin(), reading.parts.end(),
                         [](const RowPart& part) { return part.channel >= 0; });
}

bool isSound(const RowDefinition& reading) {
    const std::ptrdiff_t fewest =
        reading.kind == Kind::recorded || reading.kind == Kind::average ? 1 : 2;
    return std::ssize(reading.parts) >= fewest && knownParts(reading) == std::ssize(reading.parts);
}

bool explainsMore(const RowDefinition& a, const RowDefinition& b) {
    return knownParts(a) != knownParts(b) ? knownParts(a) > knownParts(b)
                                          : a.parts.size() < b.parts.size();
}

// The first sound way to read a text, the likeliest tried first, or else the one that explains
// most of it.
RowDefinition bestReading(const std::string& text, const ChannelNames& names) {
    RowDefinition best{Kind::recorded, {plainPart(text, names)}, {}, {}};
    const auto consider = [&best](const RowDefinition& reading) {
        if (!isSound(best) && (isSound(reading) || explainsMore(reading, best)))
            best = reading;
    };
    constexpr std::size_t longestName = 64; // bytes: 31 characters of up to two
    for (std::size_t minus = text.find('-'); minus <= longestName && !isSound(best);
         minus = text.find('-', minus + 1))
        consider(differenceReading(std::string(trimmed(std::string_view(text).substr(0, minus))),
                                   std::string(trimmed(std::string_view(text).substr(minus + 1))),
                                   names));
    if (text.find('+') != std::string::npos)
        consider(averageReading(text, names));
    return best;
}

std::string shortened(const std::string& text) {
    constexpr std::size_t longestEcho = 60;
    return text.size() <= longestEcho ? text : text.substr(0, longestEcho) + "...";
}

std::string unknownFault(const RowDefinition& reading, const ChannelNames& names) {
    if (reading.kind == Kind::recorded)
        return "no such channel" + names.hint(reading.parts.front().name);
    const auto part = std::find_if(reading.parts.begin(), reading.parts.end(),
                                   [](const RowPart& each) { return each.channel < 0; });
    if (part == reading.parts.end() || part->name.empty())
        return "a channel name is missing";
    return "no such channel " + shortened(part->name) + names.hint(part->name);
}

// Some weights given and others not would leave it open what the others are.
std::string weightFault(const RowDefinition& reading) {
    std::string weighted;
    std::string unweighted;
    for (std::size_t i = reading.kind == Kind::average ? 0 : 1; i < reading.parts.size(); ++i) {
        const RowPart& part = reading.parts[i];
        if (part.weight && std::isnan(*part.weight))
            return "the weight of " + part.name + " is no number";
        (part.weight ? weighted : unweighted) = part.name;
    }
    return weighted.empty() || unweighted.empty()
               ? std::string()
               : weighted + " has a weight and " + unweighted +
                     " has none; give one to all of them or to none";
}

} // namespace

std::vector<int> RowDefinition::channels() const {
    std::vector<int> channels;
    for (const RowPart& part : parts)
        channels.push_back(part.channel);
    return channels;
}

std::vector<double> RowDefinition::weights() const {
    std::vector<double> weights;
    for (const RowPart& part : parts)
        if (part.weight)
            weights.push_back(*part.weight);
    return weights;
}

std::optional<RowDefinition> readRowDefinition(const std::string& text, const ChannelNames& names,
                                               std::string& fault) {
    const std::string definition(trimmed(text));
    RowDefinition reading = bestReading(definition, names);
    reading.text = definition;
    fault = isSound(reading) ? weightFault(reading) : unknownFault(reading, names);
    if (fault.empty())
        return reading;
    fault = shortened(reading.text) + ": " + fault;
    return std::nullopt;
}

} // namespace kvsig::tool
