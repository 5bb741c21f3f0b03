#include "tool/Rows.h"

#include "kvsig/montage/FilterDesign.h"
#include "kvsig/util/Text.h"
#include "tool/PhysicalValues.h"
#include "tool/Words.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kvsig::tool {
namespace {

constexpr short otherUnitType = 100;
constexpr double notchHalfWidth = 1.0; // hertz to either side, at -3 dB

// The width frequency that makes a notch notchHalfWidth wide to either side. The filter is the
// bilinear transform of (s^2 + t^2) / ((s + u)^2 + t^2), t = tan(pi f / rate), whose half width is
// u on the warped axis; around f that axis is stretched by pi / rate * (1 + t^2).
double notchWidthFrequency(double hertz, double rate) {
    constexpr double pi = std::numbers::pi;
    const double t = std::tan(pi * hertz / rate);
    return rate / pi * std::atan(pi * notchHalfWidth / rate * (1.0 + t * t));
}

// What a chain does to a constant.
double gainAtZeroHertz(const FilterList& chain) {
    double gain = 1.0;
    for (int i = 0; i < chain.count(); ++i) {
        Filter& filter = *chain.filter(i);
        const double numerator =
            filter.getNumerWeight(0) + filter.getNumerWeight(1) + filter.getNumerWeight(2);
        gain *= numerator / (1.0 - filter.getDenomWeight(1) - filter.getDenomWeight(2));
    }
    return gain;
}

double notchGainAtZeroHertz(FilterAttr notch, double rate) {
    IIRNotch filter;
    FilterList chain;
    designFilter(filter, notch, rate);
    chain.addNext(&filter);
    return gainAtZeroHertz(chain);
}

FilterAttr attrOf(double hertz) {
    FilterAttr setting;
    setting.use = hertz > 0;
    setting.cutoff = hertz;
    return setting;
}

} // namespace

AvgSource* Rows::averageReference(int index) {
    return index >= 0 && std::cmp_less(index, m_averages.size())
               ? m_averages[static_cast<std::size_t>(index)].get()
               : nullptr;
}

int Rows::rowOf(const DataSource& source) {
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i].source.get() == &source)
            return static_cast<int>(i);
    return -1;
}

bool Rows::select(const SignalOptions& options) {
    if (!options.channels) {
        for (int i = 0; i < m_recording->reader->channelCount(); ++i)
            addRecorded(i);
    } else {
        bool all = true;
        for (const std::string& text : splitWords(*options.channels, ','))
            all = add(text) && all;
        if (!all)
            return false;
    }
    if (m_rows.empty()) {
        complain(m_recording->path + ": --channels \"" + options.channels.value_or("") +
                 "\" names no channel");
        return false;
    }
    applyFilters(options);
    return true;
}

bool Rows::add(const std::string& text) {
    std::string fault;
    const auto definition = readRowDefinition(text, m_names, fault);
    if (!definition) {
        complain(m_recording->path + ": --channels " + fault);
        return false;
    }
    for (const RowPart& part : definition->parts)
        remarkOnTwins(part.name);
    switch (definition->kind) {
    case RowDefinition::Kind::recorded:
        addRecorded(definition->parts.front().channel);
        return true;
    case RowDefinition::Kind::average:
        return append(makeAverage(definition->channels(), definition->weights()), *definition);
    default:
        return addDifference(*definition);
    }
}

void Rows::remarkOnTwins(const std::string& name) {
    const std::vector<int> twins = m_names.all(name);
    if (twins.size() < 2 || !m_remarked.insert(twins.front()).second)
        return;
    std::string others;
    for (std::size_t i = 1; i < twins.size(); ++i)
        others += (i + 1 < twins.size() ? ", #" : " and #") + std::to_string(twins[i]);
    const std::string taken = "#" + std::to_string(twins.front());
    remark(m_recording->path + ": channels " + taken + others + " are " +
           (twins.size() == 2 ? "both" : "all") + " named " + name + "; " + taken + " is taken");
}

std::unique_ptr<AvgSource> Rows::makeAverage(const std::vector<int>& channels,
                                             const std::vector<double>& weights) const {
    auto average = std::make_unique<AvgSource>(*m_recording->reader, channels);
    if (!weights.empty())
        average->setWeights(weights);
    return average;
}

int Rows::averageOf(const RowDefinition& definition) {
    for (std::size_t i = 0; i < m_averages.size(); ++i)
        if (equalNoCase(m_averages[i]->name(), definition.average))
            return static_cast<int>(i);
    std::vector<int> channels = definition.channels();
    channels.erase(channels.begin());
    m_averages.push_back(makeAverage(channels, definition.weights()));
    m_averages.back()->setName(definition.average.c_str());
    return static_cast<int>(m_averages.size() - 1);
}

void Rows::addRecorded(int channel) {
    IDataReader& reader = *m_recording->reader;
    Row row;
    row.source = std::make_unique<G1G2Source>(reader, channel, -1);
    row.name = m_names.label(channel);
    row.units = toUtf8(reader.channelUnits(channel));
    row.channel = channel;
    const PhysicalMap map = physicalMapOf(reader, channel);
    row.gain = map.gain;
    row.offset = map.offset;
    row.microvolts = reader.channelType(channel) != otherUnitType;
    m_rows.push_back(std::move(row));
}

bool Rows::addDifference(const RowDefinition& definition) {
    IDataReader& reader = *m_recording->reader;
    int channel2 = definition.parts.back().channel;
    if (definition.kind == RowDefinition::Kind::averageDifference) {
        if (reader.channelCount() > G1G2Source::averageBit) {
            complain(m_recording->path + ": " + definition.text +
                     ": averages need a recording of at most " +
                     std::to_string(G1G2Source::averageBit) + " channels");
            return false;
        }
        channel2 = G1G2Source::averageBit | averageOf(definition);
    }
    return append(std::make_unique<G1G2Source>(reader, definition.parts.front().channel, channel2),
                  definition);
}

// One scale serves a whole derivation, so its channels must share type, units and calibration where
// the scale depends on them.
bool Rows::append(std::unique_ptr<DataSource> source, const RowDefinition& definition) {
    IDataReader& reader = *m_recording->reader;
    const std::vector<int> channels = definition.channels();
    Row row;
    row.gain = physicalMapOf(reader, channels.front()).gain;
    for (const int channel : channels) {
        const bool sameKind = reader.channelType(channel) == reader.channelType(channels.front());
        if (sameKind && physicalMapOf(reader, channel).gain == row.gain)
            continue;
        complain(m_recording->path + ": " + definition.text + ": " + m_names.label(channel) + " (" +
                 toUtf8(reader.channelUnits(channel)) + ") and " + m_names.label(channels.front()) +
                 " (" + toUtf8(reader.channelUnits(channels.front())) +
                 ") differ in units or scale and cannot be combined");
        return false;
    }
    source->setMontage(this);
    row.source = std::move(source);
    row.name = definition.text;
    row.units = toUtf8(reader.channelUnits(channels.front()));
    row.microvolts = reader.channelType(channels.front()) != otherUnitType;
    m_rows.push_back(std::move(row));
    return true;
}

void Rows::applyFilters(const SignalOptions& options) {
    const double rate = m_recording->reader->samplingRate();
    SourceSettings settings;
    settings.followMontage = false;
    settings.lowPass = attrOf(options.highFilter);
    settings.highPass = attrOf(options.lowFilter);
    FilterAttr notch = attrOf(options.notch);
    notch.second = notchWidthFrequency(options.notch, rate);
    const double notchPass = notch.use ? notchGainAtZeroHertz(notch, rate) : 1.0;
    for (Row& row : m_rows) {
        row.source->setUseFilter(false);
        row.source->setSettings(settings);
        row.source->appendOwnFilters(rate);
        if (notch.use) {
            // Each row streams through a notch of its own: the filter carries the row's state.
            designFilter(m_notches.emplace_back(), notch, rate);
            row.source->setUseFilter(true);
            row.source->filters()->addNext(&m_notches.back());
        }
        // What the notch takes off everything below it is given back.
        row.gain /= notchPass;
        row.offset *= gainAtZeroHertz(*row.source->filters()) / notchPass;
    }
}

} // namespace kvsig::tool
