#include "tool/Rows.h"

#include "kvsig/montage/DataSource.h"
#include "kvsig/montage/FilterDesign.h"
#include "kvsig/util/Text.h"
#include "tool/RowFaults.h"
#include "tool/Words.h"

#include <algorithm>
#include <cmath>

namespace kvsig::tool {
namespace {

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
        if (m_rows[i].source == &source)
            return static_cast<int>(i);
    return -1;
}

bool Rows::select(const SignalOptions& options, bool keepGaps) {
    bool selected = true;
    if (options.montage.isMade())
        selected = selectMontage(options.montage, keepGaps);
    else if (options.channels)
        selected = selectChannels(*options.channels);
    else
        for (int i = 0; i < m_recording->reader->channelCount(); ++i)
            addRecorded(i);
    if (selected)
        applyFilters(options);
    return selected;
}

bool Rows::selectChannels(const std::string& list) {
    bool all = true;
    for (const std::string& text : splitWords(list, ','))
        all = add(text) && all;
    if (all && m_rows.empty())
        complain(m_recording->path + ": --channels \"" + list + "\" names no channel");
    return all && !m_rows.empty();
}

bool Rows::selectMontage(const MontageChoice& choice, bool keepGaps) {
    if (!fillMontage(m_montage, *m_recording, choice))
        return false;
    m_reference = m_montage.ref();
    // Gaps stand as the montage has them, but a group of rows that are all left out takes the gap
    // behind it, or before it, away with it.
    bool anyLeftOut = false;
    bool anyShown = false;
    for (int i = 0; i < m_montage.sourceCount(); ++i) {
        DataSource& source = *m_montage.source(i);
        anyLeftOut = anyLeftOut || m_montage.leftOutBefore(i);
        if (!source.isGap()) {
            (addMontageRow(source) ? anyShown : anyLeftOut) = true;
            continue;
        }
        if (keepGaps && (anyShown || !anyLeftOut))
            addGap(source);
        anyLeftOut = anyShown = false;
    }
    anyLeftOut = anyLeftOut || m_montage.leftOutBefore(m_montage.sourceCount());
    if (anyLeftOut && !anyShown && !m_rows.empty() && m_rows.back().gap)
        m_rows.pop_back();
    const bool any =
        std::any_of(m_rows.begin(), m_rows.end(), [](const Row& row) { return !row.gap; });
    if (!any)
        complain(m_recording->path + ": montage " + m_montage.name() + " has no rows to show");
    return any;
}

void Rows::addGap(DataSource& source) {
    Row row;
    row.gap = true;
    row.source = &source;
    m_rows.push_back(std::move(row));
}

bool Rows::addMontageRow(DataSource& source) {
    Row row;
    if (const auto* pair = dynamic_cast<G1G2Source*>(&source)) {
        const std::vector<int> channels = channelsOfRow(m_montage, *m_recording->reader, *pair);
        if (const std::string fault = rowFault(*m_recording, m_names, channels); !fault.empty()) {
            remark(m_recording->path + ": " + rowLabel(source) + " is left out: " + fault);
            return false;
        }
        row = channels.size() == 1 ? recordedRow(channels.front()) : derivedRow(channels.front());
        row.name = rowLabel(source);
    }
    row.source = &source;
    m_rows.push_back(std::move(row));
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

DataSource& Rows::keep(std::unique_ptr<DataSource> source) {
    return *m_sources.emplace_back(std::move(source));
}

Row Rows::recordedRow(int channel) const {
    IDataReader& reader = *m_recording->reader;
    Row row;
    row.name = m_names.label(channel);
    row.units = toUtf8(reader.channelUnits(channel));
    row.channel = channel;
    const PhysicalMap map = physicalMapOf(reader, channel);
    row.gain = map.gain;
    row.offset = map.offset;
    row.place = m_recording->placeOf(channel);
    row.countMap = countMapOf(reader, channel);
    row.microvolts = reader.channelType(channel) != otherUnitType;
    return row;
}

void Rows::addRecorded(int channel) {
    Row row = recordedRow(channel);
    row.source = &keep(std::make_unique<G1G2Source>(*m_recording->reader, channel, -1));
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

std::string Rows::faultOf(const RowDefinition& definition) const {
    const std::vector<int> channels = definition.channels();
    const auto byElectrode = [this](const RowPart& part) { return m_names.isElectrode(part.name); };
    std::string fault = mixFault(*m_recording, m_names, channels);
    if (!fault.empty() ||
        std::none_of(definition.parts.begin(), definition.parts.end(), byElectrode))
        return fault;
    fault = referenceFault(*m_recording, m_names, channels);
    return fault.empty() ? fault
                         : fault + "; for the difference of channels name them in full or as #N";
}

Row Rows::derivedRow(int first) const {
    IDataReader& reader = *m_recording->reader;
    Row row;
    row.gain = physicalMapOf(reader, first).gain;
    row.units = toUtf8(reader.channelUnits(first));
    row.microvolts = reader.channelType(first) != otherUnitType;
    return row;
}

bool Rows::append(std::unique_ptr<DataSource> source, const RowDefinition& definition) {
    if (const std::string fault = faultOf(definition); !fault.empty()) {
        complain(m_recording->path + ": " + definition.text + ": " + fault);
        return false;
    }
    source->setMontage(this);
    Row row = derivedRow(definition.channels().front());
    row.source = &keep(std::move(source));
    row.name = definition.text;
    m_rows.push_back(std::move(row));
    return true;
}

// Rows stream side by side, so each runs through filters of its own: a filter carries its row's
// state. A montage's own filter objects are shared, and leave the chains here.
void Rows::applyFilters(const SignalOptions& options) {
    const double rate = m_recording->reader->samplingRate();
    FilterAttr notch = attrOf(options.notch);
    notch.second = notchWidthFrequency(options.notch, usualNotchHalfWidth, rate);
    const double notchPass = notch.use ? notchGainAtZeroHertz(notch, rate) : 1.0;
    for (Row& row : m_rows) {
        SourceSettings settings = row.source->settings();
        if (settings.followMontage) {
            settings.lowPass = attrOf(options.highFilter);
            settings.highPass = attrOf(options.lowFilter);
        }
        row.source->filters()->removeAll();
        row.source->setUseFilter(false);
        row.source->setSettings(settings);
        row.source->appendOwnFilters(rate);
        if (notch.use) {
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
