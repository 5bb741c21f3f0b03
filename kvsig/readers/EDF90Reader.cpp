#include "kvsig/readers/EDF90Reader.h"

#include "kvsig/kernel/DataPage.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/readers/BDFReader.h"
#include "kvsig/readers/EdfChannel.h"
#include "kvsig/readers/EdfHeader.h"
#include "kvsig/readers/EdfInspection.h"
#include "kvsig/readers/EdfOpening.h"
#include "kvsig/readers/EdfSentences.h"
#include "kvsig/readers/EdfStart.h"
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
    reportOddCalibrations();
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
        return refuse(2, edf::fieldText("number of signals", edf::signalCount.offset,
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
    const edf::Opened opened{.file = m_edf->file,
                             .header = m_edf->header,
                             .channels = m_edf->channels,
                             .samplingRate = samplingRate(),
                             .sampleBytes = storedSampleBytes(),
                             .frameBytes = chunkBytes()};
    for (const OpenFinding& finding : edf::openingFindings(opened))
        report(finding.severity, finding.text);
}

// The kernel calibrates by IEEE rules; the user must know where that gives no numbers.
void EDF90Reader::reportOddCalibrations() {
    constexpr int mostTold = 10;
    const edf::Header& header = m_edf->header;
    int odd = 0;
    for (int c = 0; c < channelCount(); ++c) {
        const edf::Channel& channel = m_edf->channels[static_cast<std::size_t>(c)];
        const bool isUsual = channel.digitalMin != channel.digitalMax &&
                             std::isfinite(channel.physicalMax - channel.physicalMin);
        if (isUsual || std::isfinite(_calibration(c)) || ++odd > mostTold)
            continue;
        const std::int64_t signal = header.channels()[static_cast<std::size_t>(c)];
        const auto field = [&header, signal](const char* name, edf::SignalField which) {
            return edf::fieldText(name, header.offsetOf(which, signal), header.text(which, signal));
        };
        report(OpenFinding::Severity::warning,
               "signal " + std::to_string(signal + 1) +
                   " has no finite values: " + field("digital minimum", edf::digitalMin) + ", " +
                   field("maximum", edf::digitalMax) + "; " +
                   field("physical minimum", edf::physicalMin) + ", " +
                   field("maximum", edf::physicalMax));
    }
    if (odd > mostTold)
        report(OpenFinding::Severity::warning,
               std::to_string(odd - mostTold) + " more signals have no finite values");
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
        return refuse(2, edf::headerLengthText(header) + ", but the file ends after " +
                             std::to_string(size) + " bytes");
    if (const std::string fault = edf::headerLengthFault(header); !fault.empty())
        return refuse(2, fault);
    const auto& samples = header.signalSamples();
    const auto none =
        std::find_if(samples.begin(), samples.end(), [](std::int64_t count) { return count < 1; });
    if (header.recordSamples() <= 0)
        return refuse(2,
                      edf::samplesText(header, none - samples.begin()) + ", at least 1 is needed");
    if (nPoints() == 0)
        return refuse(2, "no whole data record: one takes " +
                             std::to_string(2 * header.recordSamples()) + " bytes or more, " +
                             std::to_string(data) + " follow the header; " +
                             edf::samplesText(header, edf::largestSignal(header)));
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

    copyText(patient.testDate, edf::fullDate(header));
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
