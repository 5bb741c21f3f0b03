#include "tool/Rows.h"

#include "kvsig/montage/FilterDesign.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/montage/names/References.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"
#include "tool/Nearest.h"
#include "tool/Words.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kvsig::tool {
namespace {

constexpr short otherUnitType = 100;
constexpr double notchHalfWidth = 1.0; // hertz to either side, at -3 dB

std::string trimmed(const std::string& text) {
    const std::size_t start = text.find_first_not_of(' ');
    return start == std::string::npos ? std::string()
                                      : text.substr(start, text.find_last_not_of(' ') - start + 1);
}

// The kernel multiplies the physical value of a type-100 channel by the calibration once more; the
// gain undoes that. Of the other types it leaves out a constant.
double physicalGain(IDataReader& reader, int channel) {
    const double calibration = reader.calibration(channel);
    const bool invertible = calibration != 0.0 && std::isfinite(calibration);
    return reader.channelType(channel) == otherUnitType && invertible ? 1.0 / calibration : 1.0;
}

double physicalOffset(IDataReader& reader, int channel) {
    const double calibration = reader.calibration(channel);
    // Equal physical limits: every sample has that one value, which the kernel's zeros leave out.
    if (reader.channelType(channel) == otherUnitType && calibration != 0.0)
        return 0.0;
    return reader.physioLow(channel) - reader.digitalLow(channel) * calibration;
}

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
    IDataReader& reader = *m_recording->reader;
    if (!options.channels) {
        for (int i = 0; i < reader.channelCount(); ++i)
            addRecorded(i);
    } else {
        bool all = true;
        for (const std::string& text : splitWords(*options.channels, ','))
            all = add(trimmed(text)) && all;
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
    if (const int channel = channelOf(text); channel >= 0) {
        remarkOnTwins(channel);
        addRecorded(channel);
        return true;
    }
    // Channel names may hold hyphens themselves: the first one that splits the text into two known
    // labels is the minus.
    for (std::size_t minus = text.find('-'); minus != std::string::npos;
         minus = text.find('-', minus + 1)) {
        const std::string first = trimmed(text.substr(0, minus));
        const std::string second = trimmed(text.substr(minus + 1));
        if (channelOf(first) >= 0 && (channelOf(second) >= 0 || averageOf(second) >= 0))
            return addDerivation(text, first, second);
    }
    if (text.find('-') == std::string::npos && IsAvgDefn(text.c_str()))
        return addAverage(text);
    complainUnknown(text);
    return false;
}

int Rows::channelOf(const std::string& label) const {
    IDataReader& reader = *m_recording->reader;
    if (label.size() > 1 && label.front() == '#' &&
        std::all_of(label.begin() + 1, label.end(), isDigit)) {
        const std::int64_t index = leadingInteger(label.substr(1));
        return index < reader.channelCount() ? static_cast<int>(index) : -1;
    }
    for (int i = 0; i < reader.channelCount(); ++i)
        if (equalNoCase(toUtf8(reader.channelName(i)), label))
            return i;
    for (int i = 0; i < reader.channelCount(); ++i)
        if (equalNoCase(toUtf8(reader.grid1(i)), label))
            return i;
    return -1;
}

void Rows::remarkOnTwins(int channel) const {
    IDataReader& reader = *m_recording->reader;
    const std::string name = reader.channelName(channel);
    for (int i = channel + 1; i < reader.channelCount(); ++i)
        if (equalNoCase(reader.channelName(i), name))
            remark(m_recording->path + ": channels #" + std::to_string(channel) + " and #" +
                   std::to_string(i) + " are both named " + toUtf8(name) + "; #" +
                   std::to_string(channel) + " is taken");
}

std::unique_ptr<AvgSource> Rows::makeAverage(const std::string& defn) const {
    std::vector<int> channels;
    std::vector<double> weights;
    for (std::string term : splitWords(defn, '+')) {
        double weight = 0.0;
        if (YankAvgWgt(term.data(), weight))
            weights.push_back(weight);
        channels.push_back(channelOf(trimmed(term.c_str())));
        if (channels.back() < 0)
            return nullptr;
    }
    if (channels.empty())
        return nullptr;
    auto average = std::make_unique<AvgSource>(*m_recording->reader, channels);
    if (weights.size() == channels.size())
        average->setWeights(weights);
    return average;
}

int Rows::averageOf(const std::string& label) {
    for (std::size_t i = 0; i < m_averages.size(); ++i)
        if (equalNoCase(m_averages[i]->name(), label))
            return static_cast<int>(i);
    std::string defn = IsAvgDefn(label.c_str()) ? label : "";
    for (const AvgRefDefn* row = gGlobalAvgRefs; row->pszName; ++row)
        if (equalNoCase(row->pszName, label))
            defn = row->pszDefn;
    auto average = makeAverage(defn);
    if (!average)
        return -1;
    average->setName(label.c_str());
    m_averages.push_back(std::move(average));
    return static_cast<int>(m_averages.size() - 1);
}

void Rows::addRecorded(int channel) {
    IDataReader& reader = *m_recording->reader;
    Row row;
    row.source = std::make_unique<G1G2Source>(reader, channel, -1);
    row.name = toUtf8(reader.channelName(channel));
    row.units = toUtf8(reader.channelUnits(channel));
    row.channel = channel;
    row.gain = physicalGain(reader, channel);
    row.offset = physicalOffset(reader, channel);
    row.microvolts = reader.channelType(channel) != otherUnitType;
    m_rows.push_back(std::move(row));
}

bool Rows::addDerivation(const std::string& text, const std::string& first,
                         const std::string& second) {
    const int channel1 = channelOf(first);
    std::vector<int> channels{channel1};
    int channel2 = channelOf(second);
    if (channel2 >= 0) {
        channels.push_back(channel2);
    } else if (m_recording->reader->channelCount() > G1G2Source::averageBit) {
        complain(m_recording->path + ": " + text + ": averages need a recording of at most " +
                 std::to_string(G1G2Source::averageBit) + " channels");
        return false;
    } else {
        const int average = averageOf(second);
        channel2 = G1G2Source::averageBit | average;
        const auto& members = m_averages[static_cast<std::size_t>(average)]->getAvgChannels();
        channels.insert(channels.end(), members.begin(), members.end());
    }
    return append(std::make_unique<G1G2Source>(*m_recording->reader, channel1, channel2), channels,
                  text);
}

bool Rows::addAverage(const std::string& text) {
    auto average = makeAverage(text);
    if (!average) {
        complainUnknown(text);
        return false;
    }
    const std::vector<int> channels = average->getAvgChannels();
    return append(std::move(average), channels, text);
}

// One scale serves a whole derivation, so its channels must share type, units and calibration where
// the scale depends on them.
bool Rows::append(std::unique_ptr<DataSource> source, const std::vector<int>& channels,
                  const std::string& text) {
    IDataReader& reader = *m_recording->reader;
    Row row;
    row.gain = physicalGain(reader, channels.front());
    for (const int channel : channels) {
        const bool sameKind = reader.channelType(channel) == reader.channelType(channels.front());
        if (sameKind && physicalGain(reader, channel) == row.gain)
            continue;
        complain(m_recording->path + ": " + text + ": " + toUtf8(reader.channelName(channel)) +
                 " (" + toUtf8(reader.channelUnits(channel)) + ") and " +
                 toUtf8(reader.channelName(channels.front())) + " (" +
                 toUtf8(reader.channelUnits(channels.front())) +
                 ") differ in units or scale and cannot be combined");
        return false;
    }
    source->setMontage(this);
    row.source = std::move(source);
    row.name = text;
    row.units = toUtf8(reader.channelUnits(channels.front()));
    row.microvolts = reader.channelType(channels.front()) != otherUnitType;
    m_rows.push_back(std::move(row));
    return true;
}

void Rows::complainUnknown(const std::string& label) const {
    IDataReader& reader = *m_recording->reader;
    std::vector<std::string> names;
    for (int i = 0; i < reader.channelCount(); ++i) {
        names.push_back(toUtf8(reader.channelName(i)));
        names.push_back(toUtf8(reader.grid1(i)));
    }
    std::string hint;
    for (const std::string& name : nearestNames(label, names))
        hint += (hint.empty() ? "; the nearest are " : ", ") + name;
    constexpr std::size_t longestEcho = 60;
    complain(m_recording->path + ": --channels " + label.substr(0, longestEcho) +
             (label.size() > longestEcho ? "..." : "") + ": no such channel" + hint);
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
