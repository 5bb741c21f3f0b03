#include "kvsig/montage/G1G2Source.h"

#include "kvsig/kernel/IDataReader.h"
#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/ChannelSum.h"
#include "kvsig/montage/MontageContext.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/util/SampleRange.h"
#include "kvsig/util/Text.h"

#include <algorithm>

namespace kvsig {

G1G2Source::G1G2Source(IDataReader& reader, int channel1, int channel2)
    : DataSource(reader), m_channel1(channel1), m_channel2(channel2) {}

bool G1G2Source::isReaderChannel2() const {
    return m_channel2 >= 0 && m_channel2 < reader()->channelCount();
}

// A reference that is not there (any more) is no grid 2.
AvgSource* G1G2Source::averageReference() const {
    if (m_channel2 < 0 || (m_channel2 & averageBit) == 0 || isReaderChannel2() || !montage())
        return nullptr;
    return montage()->averageReference(m_channel2 & ~averageBit);
}

short G1G2Source::type() { return channelType(); }
const char* G1G2Source::grid1() { return reader()->grid1(m_channel1); }

const char* G1G2Source::grid2() {
    if (isReaderChannel2())
        return reader()->grid1(m_channel2);
    if (AvgSource* average = averageReference())
        return average->name();
    return reader()->grid2(m_channel1);
}

const char* G1G2Source::name() {
    if (!m_name.empty())
        return m_name.c_str();
    if (isGap())
        return gszGap;
    char text[derivationNameSize];
    const std::string first = grid1();
    NameFromG1G2(first.c_str(), grid2(), text);
    m_text = text;
    return m_text.c_str();
}

void G1G2Source::setName(const char* name) { m_name = viewOf(name); }

void G1G2Source::setChannel12(int channel1, int channel2) {
    m_channel1 = channel1;
    m_channel2 = channel2;
    flushCache();
}

void G1G2Source::constructDefn(char* out, bool withSettings) {
    if (isGap()) {
        const int row = montage() ? montage()->rowOf(*this) : 0;
        copyText(out, definitionSize, gszGapDefn + std::to_string(row + 1));
        return;
    }
    const std::string first = grid1();
    std::string defn = first + "-" + grid2();
    if (withSettings && settingsDiffer(settings(), m_scale))
        defn += "|" + formatSettings(settings(), m_scale);
    copyText(out, definitionSize, defn);
}

int G1G2Source::_getData(long first, long last, float* buf, double scale) {
    // A channel against itself is defined as a flat line; so is a source without channels.
    if (m_channel1 == m_channel2) {
        const int count = rangeLength(first, last);
        std::fill_n(buf, count, 0.0F);
        return count;
    }
    int count = 0;
    bool add = false;
    if (isReaderChannel2()) {
        count = reader()->getData(m_channel2, first, last, buf, -scale, 0);
        add = true;
    } else if (AvgSource* average = averageReference()) {
        count = average->getData(first, last, buf, -scale);
        add = true;
    }
    if (m_channel1 < 0)
        return count;
    return add ? addChannel(*reader(), m_channel1, first, last, buf, scale)
               : reader()->getData(m_channel1, first, last, buf, scale, 0);
}

short G1G2Source::channelType() const { return reader()->channelType(m_channel1); }
const char* G1G2Source::channelUnits() const { return reader()->channelUnits(m_channel1); }
double G1G2Source::defaultPolyMinimum() const { return reader()->physioLow(m_channel1); }
double G1G2Source::defaultPolyMaximum() const { return reader()->physioHigh(m_channel1); }

void G1G2Source::copyAttributes(const G1G2Source& other) {
    DataSource::copyAttributes(other);
    m_scale = other.m_scale;
}

} // namespace kvsig
