#include "kvsig/kernel/ReaderState.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/montage/names/ScalpGrid.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <string>
#include <string_view>

// The channels of a reader: its table, and what the format says of them.
namespace kvsig {
namespace {

// T7, T8, P7 and P8 exist in the 10-10 system only.
bool isOnly1010(std::string_view name) {
    return name.size() == 2 && (name[0] == 'T' || name[0] == 'P') &&
           (name[1] == '7' || name[1] == '8');
}

const char* numberText(int channel) {
    thread_local char text[16];
    copyText(text, std::to_string(channel + 1));
    return text;
}

} // namespace

const std::int16_t DataReader::m_defChannelType = ChannelRecord().type;
const char* const DataReader::m_defChannelUnits = "uV";
const std::int32_t DataReader::m_defDigitalHigh = 2048;
const std::int32_t DataReader::m_defDigitalLow = -2048;
const double DataReader::m_defPhysioHigh = ChannelRecord().physioHigh;
const double DataReader::m_defPhysioLow = ChannelRecord().physioLow;

ChannelRecord* DataReader::channelRecord(int channel) {
    return m_state->channels.find(channel, m_state->channelCount);
}

short DataReader::channelType(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    return record ? record->type : std::int16_t{0};
}

short DataReader::channelSubType(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    return record ? record->subType : std::int16_t{0};
}

const char* DataReader::channelUnits(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    return record ? record->units : "";
}

const char* DataReader::grid1(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    if (!record)
        return "";
    return m_state->gridNamesAsNumbers ? numberText(channel) : record->grid1;
}

const char* DataReader::grid2(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    if (!record)
        return "";
    return m_state->gridNamesAsNumbers ? numberText(channel) : record->grid2;
}

// Large montages look up thousands of names among thousands of channels.
int DataReader::indexOfG1(const char* name) {
    constexpr int fewChannels = 64;
    const int count = channelCount();
    if (count > fewChannels && !m_state->gridNamesAsNumbers) {
        if (!m_state->grids1.covers(count))
            m_state->grids1.build(m_state->channels, count,
                                  [this](int channel) { return grid1(channel); });
        if (m_state->grids1.covers(count))
            return m_state->grids1.find(viewOf(name));
    }
    for (int i = 0; i < channelCount(); ++i)
        if (equalNoCase(viewOf(grid1(i)), viewOf(name)))
            return i;
    return -1;
}

int DataReader::indexOfG2(const char* name) {
    for (int i = 0; i < channelCount(); ++i)
        if (equalNoCase(viewOf(grid2(i)), viewOf(name)))
            return i;
    return -1;
}

const char* DataReader::channelName(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    if (!record)
        return "";
    if (!m_state->gridNamesAsNumbers)
        return record->name;
    thread_local char text[derivationNameSize];
    NameFromG1G2(grid1(channel), grid2(channel), text);
    return text;
}

double DataReader::calibration(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    return record ? record->calibration : 0.0;
}

double DataReader::dcOffset(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    return record ? record->dcOffset : 0.0;
}

double DataReader::physioHigh(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    return record ? record->physioHigh : 0.0;
}

double DataReader::physioLow(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    return record ? record->physioLow : 0.0;
}

std::int32_t DataReader::digitalHigh(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    return record ? saturate<std::int32_t>(record->digitalHigh) : 0;
}

std::int32_t DataReader::digitalLow(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    return record ? saturate<std::int32_t>(record->digitalLow) : 0;
}

bool DataReader::zeroChannel(int channel) {
    const ChannelRecord* record = channelRecord(channel);
    return record && record->zeroChannel;
}

void DataReader::setZeroChannel(int channel, bool zero) {
    if (ChannelRecord* record = channelRecord(channel))
        record->zeroChannel = zero;
}

bool DataReader::gridNamesAsNumbers() { return m_state->gridNamesAsNumbers; }
void DataReader::setGridNamesAsNumbers(bool numbers) { m_state->gridNamesAsNumbers = numbers; }

// Electrodes off the scalp have references of their own, so they do not count; without one on the
// scalp the reference stays what it was.
int DataReader::_isMapReferential() {
    bool found = false;
    for (int i = 0; i < channelCount(); ++i) {
        const ChannelRecord* record = channelRecord(i);
        if (!record || IndexOf1020(record->grid1) < 0)
            continue;
        if (!found) {
            copyText(m_state->refGrid, record->grid2);
            found = true;
        } else if (!equalNoCase(record->grid2, m_state->refGrid)) {
            m_state->refGrid[0] = '\0';
            return 0;
        }
    }
    return 1;
}

const char* DataReader::_refGrid() { return m_state->refGrid; }

const char* DataReader::_channelName(int channel) {
    thread_local char text[derivationNameSize];
    const std::string first(viewOf(_grid1(channel)));
    NameFromG1G2(first.c_str(), _grid2(channel), text);
    return text;
}

short DataReader::_channelType(int channel) { return channelType(channel); }
const char* DataReader::_channelUnits(int channel) { return channelUnits(channel); }
double DataReader::_physioHigh(int channel) { return physioHigh(channel); }
double DataReader::_physioLow(int channel) { return physioLow(channel); }
std::int32_t DataReader::_digitalHigh(int channel) { return digitalHigh(channel); }
std::int32_t DataReader::_digitalLow(int channel) { return digitalLow(channel); }
bool DataReader::setDefChannelInfo() {
    m_state->grids1.clear();
    m_state->channels.growTo(m_state->channelCount);
    return true;
}

bool DataReader::loadChannelInfo() {
    setDefChannelInfo();
    for (int i = 0; i < channelCount(); ++i) {
        ChannelRecord* record = channelRecord(i);
        if (!record)
            break;
        if (m_state->hasChannelMap == 0) {
            copyText(record->grid1, _grid1(i));
            copyText(record->grid2, _grid2(i));
            copyText(record->name, _channelName(i));
        }
        record->type = _channelType(i);
        copyText(record->units, _channelUnits(i));
        record->physioLow = _physioLow(i);
        record->physioHigh = _physioHigh(i);
        record->digitalLow = _digitalLow(i);
        record->digitalHigh = _digitalHigh(i);
        record->calibration = _calibration(i);
        record->dcOffset = _dcOffset(i);
    }
    updateMapFlags();
    return true;
}

void DataReader::updateMapFlags() {
    m_state->grids1.clear();
    m_state->map1010 = false;
    for (int i = 0; i < channelCount(); ++i)
        if (const ChannelRecord* record = channelRecord(i); record && isOnly1010(record->grid1))
            m_state->map1010 = true;
    m_state->mapReferential = _isMapReferential();
}

void DataReader::keepChannelNames() {
    m_state->keptNames = m_state->channels;
    m_state->keptNamesGiven = m_state->hasChannelMap != 0;
}

const ChannelRecord* DataReader::keptNames(int channel) {
    m_state->keptNames.growTo(channelCount());
    return m_state->keptNames.find(channel, channelCount());
}

void DataReader::resetChannelNames() {
    dropChannelMap();
    m_state->channels = ChannelTable();
    m_state->grids1.clear();
    m_state->keptNames = ChannelTable();
    m_state->keptNamesGiven = false;
    setDefChannelInfo();
}

} // namespace kvsig
