#include "kvsig/montage/AvgSource.h"

#include "kvsig/kernel/IDataReader.h"
#include "kvsig/montage/ChannelSum.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

namespace kvsig {

AvgSource::AvgSource(IDataReader& reader) : DataSource(reader) {}

AvgSource::AvgSource(IDataReader& reader, const std::vector<int>& channels)
    : DataSource(reader),
      m_channels(channels),
      m_weights(channels.size(),
                channels.empty() ? 0.0 : 1.0 / static_cast<double>(channels.size())) {}

short AvgSource::type() {
    return m_channels.empty() ? short{0} : reader()->channelType(m_channels.front());
}

const char* AvgSource::grid1() { return name(); }
const char* AvgSource::grid2() { return ""; }

const char* AvgSource::name() {
    if (!m_name.empty())
        return m_name.c_str();
    m_text.clear();
    for (const int channel : m_channels)
        m_text += reader()->grid1(channel);
    return m_text.c_str();
}

void AvgSource::setName(const char* name) { m_name = viewOf(name); }
void AvgSource::setChannel12(int, int) {}

double AvgSource::weight(std::size_t index) const {
    return index < m_weights.size() ? m_weights[index] : 0.0;
}

// The sum's tolerance is on purpose: thirds written with three decimals still are a plain average.
bool AvgSource::isPlainAverage() const {
    double sum = 0.0;
    for (std::size_t i = 0; i < m_channels.size(); ++i) {
        if (weight(i) != weight(0))
            return false;
        sum += weight(i);
    }
    return sum >= 0.99 && sum <= 1.01;
}

std::string AvgSource::definition() const {
    const bool plain = isPlainAverage();
    std::string defn;
    for (std::size_t i = 0; i < m_channels.size(); ++i) {
        if (i > 0)
            defn += "+";
        defn += reader()->grid1(m_channels[i]);
        if (!plain)
            defn += ":" + fixedText(weight(i), 3);
    }
    // One label alone would be read back as a row.
    return m_channels.size() == 1 ? defn + "+" : defn;
}

void AvgSource::constructDefn(char* out, bool) { copyText(out, definitionSize, definition()); }

int AvgSource::_getData(long first, long last, float* buf, double scale) {
    int count = 0;
    for (std::size_t i = 0; i < m_channels.size(); ++i)
        count = i > 0 ? addChannel(*reader(), m_channels[i], first, last, buf, scale * weight(i))
                      : reader()->getData(m_channels[i], first, last, buf, scale * weight(i), 0);
    return count;
}

void AvgSource::setAvgChannels(const std::vector<int>& channels) {
    m_channels = channels;
    flushCache();
}

void AvgSource::setWeights(const std::vector<double>& weights) {
    m_weights = weights;
    flushCache();
}

void AvgSource::copyAttributes(const AvgSource& other) {
    DataSource::copyAttributes(other);
    setAvgChannels(other.m_channels);
    setWeights(other.m_weights);
}

} // namespace kvsig
