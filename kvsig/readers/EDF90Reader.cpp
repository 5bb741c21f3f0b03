#include "kvsig/readers/EDF90Reader.h"

#include "kvsig/kernel/DataPage.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/readers/BDFReader.h"
#include "kvsig/readers/EdfChannel.h"
#include "kvsig/readers/EdfHeader.h"
#include "kvsig/readers/EdfInspection.h"
#include "kvsig/readers/EdfOnset.h"
#include "kvsig/readers/LifelinesReader.h"
#include "kvsig/readers/RecordDemux.h"
#include "kvsig/readers/TelefactorEDFReader.h"
#include "kvsig/util/File.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace kvsig {
namespace {

constexpr std::uint32_t edfMiscFlags = 8;
constexpr short microvoltType = 1;
constexpr short otherUnitType = 100;
constexpr long fewestSamples = 3;
constexpr std::int64_t mostTold = 20; ///< findings of one kind

using Severity = OpenFinding::Severity;

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

std::string fieldText(const std::string& name, std::int64_t offset, const std::string& value) {
    return name + " (offset " + std::to_string(offset) + ") is " + quoted(value);
}

// The two pivots differ on purpose: EDF has no rule, EDF+ counts two-digit years from 1985.
std::int64_t fullYear(std::int64_t year, const edf::Header& header) {
    const int pivot = header.kind() == edf::Kind::continuous ? 85 : 90;
    return year + (year < pivot ? 2000 : 1900);
}

// dd.mm.yy as yyyy.mm.dd; what is no date stays as it is.
std::string fullDate(const edf::Header& header) {
    std::string text = header.text(edf::startDate);
    const DottedTriple date = dottedTriple(text);
    if (!date.complete)
        return text;
    return paddedText(fullYear(date.third, header), 4) + "." + paddedText(date.second, 2) + "." +
           paddedText(date.first, 2);
}

bool within(std::int64_t value, std::int64_t least, std::int64_t most) {
    return value >= least && value <= most;
}

bool isCalendarDate(const edf::Header& header) {
    const DottedTriple date = dottedTriple(header.text(edf::startDate));
    if (!date.complete || !within(date.first, 1, 31) || !within(date.second, 1, 12) ||
        !within(date.third, 0, 99))
        return false;
    using namespace std::chrono;
    return year_month_day(year(static_cast<int>(fullYear(date.third, header))),
                          month(static_cast<unsigned>(date.second)),
                          day(static_cast<unsigned>(date.first)))
        .ok();
}

bool isTimeOfDay(const DottedTriple& time) {
    return time.complete && within(time.first, 0, 23) && within(time.second, 0, 59) &&
           within(time.third, 0, 59);
}

std::string headerLengthText(const edf::Header& header) {
    return fieldText("header length", edf::headerLength.offset, header.text(edf::headerLength));
}

std::string samplesText(const edf::Header& header, std::int64_t signal) {
    return fieldText("samples per record of signal " + std::to_string(signal + 1),
                     header.offsetOf(edf::samplesPerRecord, signal),
                     header.text(edf::samplesPerRecord, signal));
}

std::int64_t largestSignal(const edf::Header& header) {
    const auto& samples = header.signalSamples();
    return std::max_element(samples.begin(), samples.end()) - samples.begin();
}

// Samples that start inside the header are no samples; empty when the length is sound.
std::string headerLengthFault(const edf::Header& header) {
    const std::int64_t full = edf::fullLength(header.fileSignals());
    if (header.dataOffset() >= full)
        return {};
    return headerLengthText(header) + ", but the header of " +
           std::to_string(header.fileSignals()) + " signals takes " + std::to_string(full) +
           " bytes";
}

} // namespace

struct EDF90Reader::State {
    File file;
    edf::Header header;
    std::vector<edf::Channel> channels; ///< by visible channel
    RecordLayout layout; ///< its points are the samples of the record's longest channel
    bool mixedRates = false;
    bool servesRecords = false; ///< chunk reads give what the layout says and nothing else
    bool ownStartAnchor = false;
    PageBuffer record; ///< reused by every chunk read
};

EDF90Reader::EDF90Reader() : m_edf(std::make_unique<State>()) {}
EDF90Reader::~EDF90Reader() = default;

bool EDF90Reader::isFileType(const char* path) {
    File file;
    return file.open(path) && readHeaderField(HeaderBlock::readFrom(file, edf::fixedLength),
                                              edf::version.offset, edf::version.width) == "0";
}

std::uint32_t EDF90Reader::miscFlags() const { return edfMiscFlags; }

bool EDF90Reader::openFile() {
    if (m_edf->ownStartAnchor)
        clearSampleTimes();
    *m_edf = State();
    forgetSamples();

    std::string reason;
    if (!m_edf->file.open(filePath().c_str(), &reason))
        return refuse(1, reason);
    // The number of signals is four characters wide, so a whole header stays below 2.6 MB.
    const edf::Header fixedPart(HeaderBlock::readFrom(m_edf->file, edf::fixedLength));
    const std::int64_t signals = fixedPart.fileSignals();
    setHeaderLength(saturate<long>(fixedPart.dataOffset()));
    setChannelCount(saturate<int>(signals));
    if (signals < 1 || fixedPart.kind() == edf::Kind::interrupted)
        return refuseHeader(fixedPart);

    m_edf->header = edf::Header(HeaderBlock::readFrom(m_edf->file, edf::fullLength(signals)));
    layOutChannels();
    m_edf->servesRecords = isOneOfOurs() && layOutRecords();
    reportOddFields();
    return true;
}

bool EDF90Reader::refuseHeader(const edf::Header& fixedPart) {
    const std::int64_t size = m_edf->file.size();
    close();
    if (fixedPart.fileSignals() < 1 && size < edf::fixedLength)
        return refuse(2, "the file ends after " + std::to_string(size) +
                             " bytes, inside the header of at least " +
                             std::to_string(edf::fixedLength));
    if (fixedPart.fileSignals() < 1)
        return refuse(2, fieldText("number of signals", edf::signalCount.offset,
                                   fixedPart.text(edf::signalCount)) +
                             ", at least 1 is needed");
    const std::string diagnostic =
        "File " + filePath() + " is Interrupted EDF+. This format is not supported.";
    return refuse(3, diagnostic, diagnostic);
}

// The recording's rate is that of its fastest channel; the longest channel of a record is a chunk.
void EDF90Reader::layOutChannels() {
    const edf::Header& header = m_edf->header;
    const auto& samples = header.signalSamples();
    double fastest = 0.0;
    std::int64_t offset = 0;
    std::int64_t signal = 0;
    m_edf->channels.reserve(header.channels().size());
    for (const std::int64_t channel : header.channels()) {
        for (; signal < channel; ++signal)
            offset += samples[static_cast<std::size_t>(signal)];
        const std::int64_t count = samples[static_cast<std::size_t>(channel)];
        const double rate = static_cast<double>(count) / header.duration();
        if (rate > fastest)
            fastest = rate;
        if (!m_edf->layout.channels.empty() && m_edf->layout.points != count)
            m_edf->mixedRates = true;
        m_edf->layout.points = std::max(m_edf->layout.points, count);
        m_edf->layout.channels.push_back({offset, count});
        m_edf->channels.push_back(edf::channelOf(header, channel));
    }
    setChannelCount(saturate<int>(header.channels().size()));
    setSamplingRate(fastest);
}

bool EDF90Reader::isOneOfOurs() const {
    const std::type_info& type = typeid(*this);
    return type == typeid(EDF90Reader) || type == typeid(BDFReader) ||
           type == typeid(LifelinesReader) || type == typeid(TelefactorEDFReader);
}

// Chunk reads know what to make of any header; straight reading is for those that mean something.
bool EDF90Reader::layOutRecords() {
    const edf::Header& header = m_edf->header;
    RecordLayout& layout = m_edf->layout;
    layout.file = &m_edf->file;
    layout.dataOffset = header.dataOffset();
    layout.recordSamples = header.recordSamples();
    layout.sampleBytes = storedSampleBytes();
    const auto& samples = header.signalSamples();
    return layout.dataOffset >= 0 && layout.recordBytes() <= maxPageBytes &&
           std::all_of(samples.begin(), samples.end(),
                       [](std::int64_t count) { return count > 0; }) &&
           std::all_of(layout.channels.begin(), layout.channels.end(),
                       [&layout](const RecordChannel& channel) {
                           return channel.offset + channel.samples <= layout.recordSamples;
                       });
}

const RecordLayout* EDF90Reader::recordLayout() {
    // What a chunk read would refuse must not be shown another way.
    return m_edf->servesRecords && isChannel(channelCount() - 1) && std::in_range<int>(chunkBytes())
               ? &m_edf->layout
               : nullptr;
}

std::int64_t EDF90Reader::chunkBytes() {
    return m_edf->layout.points * channelCount() * bytesPerSample();
}

void EDF90Reader::reportOddFields() {
    reportOddNumbers();
    reportOddStart();
    reportOddTiming();
    reportOddSizes();
    reportOddOnsets();
}

// Numbers are read as far as they go, as in "31 E" or "1e3"; what was made of them is told.
void EDF90Reader::reportOddNumbers() {
    const edf::Header& header = m_edf->header;
    const auto isRead = [](std::string_view text, std::int64_t taken) {
        double whole = 0.0;
        return wholeDouble(text, whole) && whole == static_cast<double>(taken);
    };
    const auto tell = [this](const std::string& field, std::int64_t taken) {
        report(Severity::warning, field + ", read as " + std::to_string(taken));
    };
    if (!isRead(header.view(edf::signalCount), header.fileSignals()))
        tell(fieldText("number of signals", edf::signalCount.offset, header.text(edf::signalCount)),
             header.fileSignals());
    if (!isRead(header.view(edf::headerLength), header.dataOffset()))
        tell(headerLengthText(header), header.dataOffset());
    std::int64_t odd = 0;
    for (std::int64_t i = 0; i < header.fileSignals(); ++i) {
        const std::int64_t samples = header.signalSamples()[static_cast<std::size_t>(i)];
        if (!isRead(header.view(edf::samplesPerRecord, i), samples) && ++odd <= mostTold)
            tell(samplesText(header, i), samples);
    }
    reportMore(Severity::warning, odd, "are no numbers");
}

// What is no time still counts as one, overflowing hours and minutes included; clock times and the
// patient record's date then mean nothing.
void EDF90Reader::reportOddStart() {
    const edf::Header& header = m_edf->header;
    const std::string date = header.text(edf::startDate);
    const std::string time = header.text(edf::startTime);
    if (!isCalendarDate(header))
        report(Severity::warning,
               fieldText("start date", edf::startDate.offset, date) + ", no date as dd.mm.yy");
    if (!isTimeOfDay(dottedTriple(time)))
        report(Severity::warning,
               fieldText("start time", edf::startTime.offset, time) + ", no time as hh.mm.ss");
}

void EDF90Reader::reportOddTiming() {
    constexpr double secondsPerYear = 31557600.0;
    const edf::Header& header = m_edf->header;
    const double rate = samplingRate();
    const std::string duration = fieldText("duration of a data record", edf::recordDuration.offset,
                                           header.text(edf::recordDuration));
    if (!(header.duration() > 0) || !std::isfinite(rate))
        report(Severity::unusable, duration + ", which gives no sampling rate");
    else if (header.duration() > secondsPerYear)
        report(Severity::unusable, duration + " seconds, more than a year");
    else if (rate > fastestSamplingRate)
        report(Severity::unusable,
               duration + ", which gives a sampling rate of " + shortestText(rate) + " Hz");
}

void EDF90Reader::reportOddSizes() {
    const edf::Header& header = m_edf->header;
    if (const std::string fault = headerLengthFault(header); !fault.empty())
        report(Severity::unusable, fault);
    // One fast signal among many slow ones makes frames far larger than the record that they come
    // from: a small file must not cost the memory of a huge one.
    constexpr std::int64_t harmless = std::int64_t{64} << 20;
    constexpr std::int64_t usualGrowth = 8;
    const std::int64_t recordBytes = header.recordSamples() * storedSampleBytes();
    const std::int64_t frameBytes = chunkBytes();
    if (std::max(recordBytes, frameBytes) > maxPageBytes ||
        frameBytes > std::max(harmless, usualGrowth * recordBytes))
        report(Severity::unusable,
               "a data record of " + std::to_string(recordBytes) + " bytes gives " +
                   std::to_string(frameBytes) +
                   " bytes at the common rate: " + samplesText(header, largestSignal(header)));
    std::int64_t empty = 0;
    for (std::int64_t i = 0; i < header.fileSignals(); ++i)
        if (header.signalSamples()[static_cast<std::size_t>(i)] < 1 && ++empty <= mostTold)
            report(Severity::unusable, samplesText(header, i) + ", at least 1 is needed");
    reportMore(Severity::unusable, empty, "are below 1");
}

// A cut header makes thousands of signals odd in the same way.
void EDF90Reader::reportMore(Severity severity, std::int64_t found, const char* what) {
    if (found > mostTold)
        report(severity, "samples per record of " + std::to_string(found - mostTold) +
                             " more signals " + what);
}

// What was recorded with gaps is shown without them. The ends of the file tell; where the gaps are
// takes a look at all of it, see inspectFile().
void EDF90Reader::reportOddOnsets() {
    if (!edf::declaresPlus(m_edf->header))
        return;
    const double shift = edf::lastOnsetShift(m_edf->file, m_edf->header, storedSampleBytes());
    if (shift == 0.0)
        return;
    const std::string seconds = edf::secondsText(std::abs(shift));
    report(Severity::warning,
           shift > 0 ? "its data records leave gaps of " + seconds +
                           " in all and are shown as if there were none: times behind a gap are "
                           "wrong"
                     : "its data records overlap by " + seconds +
                           " in all and are shown one after the other: times behind an overlap "
                           "are wrong");
}

// The kernel calibrates by IEEE rules; the user must know where that gives no numbers.
void EDF90Reader::reportOddCalibrations() {
    const edf::Header& header = m_edf->header;
    for (int c = 0; c < channelCount(); ++c) {
        if (!isChannel(c) || std::isfinite(calibration(c)))
            continue;
        const std::int64_t signal = header.channels()[static_cast<std::size_t>(c)];
        const auto field = [&header, signal](const char* name, edf::SignalField which) {
            return fieldText(name, header.offsetOf(which, signal), header.text(which, signal));
        };
        report(Severity::warning,
               "signal " + std::to_string(signal + 1) +
                   " has no finite values: " + field("digital minimum", edf::digitalMin) + ", " +
                   field("maximum", edf::digitalMax) + "; " +
                   field("physical minimum", edf::physicalMin) + ", " +
                   field("maximum", edf::physicalMax));
    }
}

void EDF90Reader::close() {
    m_edf->file.close();
    m_edf->record = PageBuffer();
}

std::int64_t EDF90Reader::wholeRecords(int sampleBytes) const {
    const std::int64_t size = m_edf->file.size();
    const edf::Header& header = m_edf->header;
    if (header.recordSamples() <= 0 || header.dataOffset() >= size)
        return 0;
    return (size - header.dataOffset()) / (sampleBytes * header.recordSamples());
}

bool EDF90Reader::readSampleInfo() {
    // Two bytes per sample in every format on purpose: the kernel counts a recording of 24-bit
    // samples half again as long as it is, and what lies past its real end reads as zeros.
    const std::int64_t records = wholeRecords(2);
    setMaxDataIndex(saturate<long>(
        static_cast<double>(records) * static_cast<double>(m_edf->layout.points) - 1.0));
    if (nPoints() < fewestSamples)
        return refuseWithoutSamples();

    const DottedTriple start = dottedTriple(m_edf->header.text(edf::startTime));
    SampleTime anchor;
    if (start.complete)
        anchor.time = 3600.0 * static_cast<double>(start.first) +
                      60.0 * static_cast<double>(start.second) + static_cast<double>(start.third);
    if (sampleTimeCount() == 0) {
        addSampleTime(anchor);
        m_edf->ownStartAnchor = true;
    }
    reportOddCalibrations();
    return true;
}

bool EDF90Reader::refuseWithoutSamples() {
    const edf::Header& header = m_edf->header;
    const std::int64_t size = m_edf->file.size();
    const std::int64_t data = size - header.dataOffset();
    if (m_edf->layout.channels.empty())
        return refuse(2, "none of its " + std::to_string(header.fileSignals()) +
                             " signals is a channel: all hold annotations");
    if (data == 0)
        return refuse(2, "no data records: the file ends with its header of " +
                             std::to_string(size) + " bytes");
    if (data < 0)
        return refuse(2, headerLengthText(header) + ", but the file ends after " +
                             std::to_string(size) + " bytes");
    if (const std::string fault = headerLengthFault(header); !fault.empty())
        return refuse(2, fault);
    const auto& samples = header.signalSamples();
    const auto none =
        std::find_if(samples.begin(), samples.end(), [](std::int64_t count) { return count < 1; });
    if (header.recordSamples() <= 0)
        return refuse(2, samplesText(header, none - samples.begin()) + ", at least 1 is needed");
    if (nPoints() == 0)
        return refuse(2, "no whole data record: one takes " +
                             std::to_string(2 * header.recordSamples()) + " bytes or more, " +
                             std::to_string(data) + " follow the header; " +
                             samplesText(header, largestSignal(header)));
    return refuse(2, "it holds " + std::to_string(nPoints()) + " samples, at least " +
                         std::to_string(fewestSamples) + " are needed");
}

bool EDF90Reader::getPatientRec() {
    const edf::Header& header = m_edf->header;
    PatientRec& patient = *patientRec();
    const std::string identification = header.text(edf::patientId);
    copyText(patient.rawPatient, identification);
    copyText(patient.rawRecording, header.text(edf::recordingId));
    copyText(patient.testTime, header.text(edf::startTime));

    copyText(patient.testDate, fullDate(header));
    // What this file does not tell must not be the last one's patient.
    copyText(patient.id, "");
    copyText(patient.sex, "");
    copyText(patient.birthDate, "");
    const bool plus = header.kind() == edf::Kind::continuous;
    const std::vector<std::string> words = splitWords(identification, ' ');
    if (plus && words.size() == 4) {
        copyText(patient.id, words[0]);
        copyText(patient.sex, words[1]);
        copyText(patient.birthDate, words[2]);
        patient.setName(words[3]);
        return true;
    }
    patient.setName(identification);
    if (!plus)
        copyText(patient.id, patient.rawRecording);
    return true;
}

bool EDF90Reader::patientInfo(std::ostream& stream, bool flag) {
    return DataReader::patientInfo(stream, flag);
}

long EDF90Reader::storedSampleCount() {
    const double stored = static_cast<double>(wholeRecords(storedSampleBytes())) *
                          static_cast<double>(m_edf->layout.points);
    return std::min(saturate<long>(stored), sampleCount());
}

double EDF90Reader::storedSamplingRate(int channel) {
    if (!isChannel(channel))
        return 0.0;
    const RecordChannel& place = m_edf->layout.channels[static_cast<std::size_t>(channel)];
    return static_cast<double>(place.samples) / m_edf->header.duration();
}

std::vector<OpenFinding> EDF90Reader::inspectFile() {
    return edf::inspect(filePath(), storedSampleBytes());
}

bool EDF90Reader::isChannel(int channel) const {
    return channel >= 0 && std::cmp_less(channel, m_edf->channels.size());
}

// Out of range: a channel of which nothing is known.
const edf::Channel& EDF90Reader::factsOf(int channel) const {
    static const edf::Channel none;
    return isChannel(channel) ? m_edf->channels[static_cast<std::size_t>(channel)] : none;
}

const char* EDF90Reader::_channelName(int channel) {
    constexpr std::string_view prefix = "EEG ";
    const std::string& label = factsOf(channel).label;
    return label.c_str() + (startsWithNoCase(label, prefix) ? prefix.size() : 0);
}

const char* EDF90Reader::_grid1(int channel) {
    thread_local char grid1[gridNameSize];
    if (ParseG1G2(_channelName(channel), grid1, nullptr, nullptr) < 1)
        copyText(grid1, std::to_string(channel + 1));
    return grid1;
}

const char* EDF90Reader::_grid2(int channel) {
    thread_local char grid2[gridNameSize];
    if (ParseG1G2(_channelName(channel), nullptr, grid2, nullptr) < 2)
        grid2[0] = '\0';
    return grid2;
}

double EDF90Reader::_calibration(int channel) {
    const std::int64_t steps = std::int64_t{_digitalHigh(channel)} - _digitalLow(channel);
    return (_physioHigh(channel) - _physioLow(channel)) / static_cast<double>(steps);
}

double EDF90Reader::_dcOffset(int channel) {
    return (_physioLow(channel) + _physioHigh(channel)) * 0.5;
}

short EDF90Reader::_channelType(int channel) {
    if (!isChannel(channel))
        return 0;
    return factsOf(channel).microvolts ? microvoltType : otherUnitType;
}

const char* EDF90Reader::_channelUnits(int channel) {
    return isChannel(channel) ? factsOf(channel).units.c_str() : nullptr;
}

// What is not known is -1 to 1. "off" and "on" are both 0, on purpose: such a channel reads as flat
// zero.
double EDF90Reader::_physioLow(int channel) {
    const edf::Channel& facts = factsOf(channel);
    return facts.unknownMin && _channelType(channel) == otherUnitType ? -1.0 : facts.physicalMin;
}

double EDF90Reader::_physioHigh(int channel) {
    const edf::Channel& facts = factsOf(channel);
    return facts.unknownMax && _channelType(channel) == otherUnitType ? 1.0 : facts.physicalMax;
}

std::int32_t EDF90Reader::_digitalHigh(int channel) { return factsOf(channel).digitalMax; }
std::int32_t EDF90Reader::_digitalLow(int channel) { return factsOf(channel).digitalMin; }
int EDF90Reader::_minReadPts() { return saturate<int>(m_edf->layout.points); }
int EDF90Reader::storedSampleBytes() const { return 2; }
bool EDF90Reader::mixedRates() const { return m_edf->mixedRates; }

std::string EDF90Reader::signalLabel(std::int64_t fileSignal) const {
    return m_edf->header.text(edf::label, fileSignal);
}

int EDF90Reader::getChunk(long bytePos, short* buffer, int bytes) {
    const std::int64_t wanted = chunkBytes();
    // The host may have set another channel count; of more channels than the file's there is
    // nothing to frame.
    if (wanted <= 0 || bytes < wanted || !isChannel(channelCount() - 1))
        return 0;
    const std::int64_t record = bytePos / wanted;
    const std::int64_t recordBytes = m_edf->header.recordSamples() * storedSampleBytes();
    if (record < 0 || record >= wholeRecords(storedSampleBytes()) ||
        !m_edf->record.reserve(recordBytes))
        return 0;
    const std::int64_t position = m_edf->header.dataOffset() + record * recordBytes;
    if (m_edf->file.readAt(position, m_edf->record.data(), recordBytes) < recordBytes)
        return 0;
    demuxRecord(m_edf->record.data(), static_cast<std::size_t>(recordBytes), buffer);
    std::memset(static_cast<std::byte*>(static_cast<void*>(buffer)) + wanted, 0,
                static_cast<std::size_t>(bytes - wanted));
    return bytes;
}

void EDF90Reader::demuxRecord(const std::byte* record, std::size_t bytes, short* frames) {
    const auto channels =
        std::span(m_edf->layout.channels).first(static_cast<std::size_t>(channelCount()));
    demuxRecord16({record, bytes}, channels, m_edf->layout.points, frames);
}

} // namespace kvsig
