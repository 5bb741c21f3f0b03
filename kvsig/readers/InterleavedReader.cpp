#include "kvsig/readers/InterleavedReader.h"

#include "kvsig/kernel/AttributeFile.h"
#include "kvsig/kernel/ChannelRecord.h"
#include "kvsig/montage/MontageLoader.h"
#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/readers/StoredMontage.h"
#include "kvsig/util/File.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/ProfileLines.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace kvsig {
namespace {

constexpr std::uint32_t rawMiscFlags = 8;
constexpr int interleavedType = 1;
constexpr std::int64_t valueBytes = 2; // in a page, whatever the file stores
constexpr std::int64_t fewestSamples = 3;
constexpr std::size_t longestTextTold = 40;

constexpr int littleEndian16 = 0;
constexpr int bigEndian16 = 4;
constexpr int offsetBinary8 = 6;

void swapBytes(short* values, std::int64_t count) {
    std::for_each_n(values, count, [](short& value) {
        const auto bits = static_cast<std::uint16_t>(value);
        value = static_cast<short>(static_cast<std::uint16_t>(bits << 8 | bits >> 8));
    });
}

// The bytes stand at the start of the buffer that takes the values: from the last to the first none
// is overwritten before it is used.
void widenOffsetBinary(short* values, std::int64_t count) {
    const auto* bytes = static_cast<const std::byte*>(static_cast<const void*>(values));
    for (std::int64_t i = count - 1; i >= 0; --i)
        values[i] = static_cast<short>(std::to_integer<int>(bytes[i]) - 128);
}

} // namespace

struct InterleavedReader::State {
    File file;
    int dataType = littleEndian16;
    double calibration = 0.0;
    std::vector<StoredMontage> montages;
    std::vector<std::string> numberNotes; ///< keys whose numbers are not what their texts say
    std::vector<std::string> timeNotes;   ///< anchors that do not count
};

// What is written to an attribute file depends on the type.
InterleavedReader::InterleavedReader() : m_raw(std::make_unique<State>()) {
    DataReader::setFileType(interleavedType);
}

InterleavedReader::~InterleavedReader() = default;

std::uint32_t InterleavedReader::miscFlags() const { return rawMiscFlags; }

bool InterleavedReader::openFile() {
    close();
    forgetSamples();
    for (const auto* notes : {&m_raw->numberNotes, &m_raw->timeNotes})
        for (const std::string& note : *notes)
            report(OpenFinding::Severity::warning, note);
    if (channelCount() < 1)
        return refuseWithoutChannels();
    std::string reason;
    if (!m_raw->file.open(filePath().c_str(), &reason))
        return refuse(1, reason);
    reportOddAttributes();
    return true;
}

bool InterleavedReader::refuseWithoutChannels() {
    return refuse(2, "WaveformCount is " + std::to_string(channelCount()) +
                         ", at least 1 is needed (its attribute file is read before it opens)");
}

void InterleavedReader::close() { m_raw->file.close(); }

void InterleavedReader::reportOddAttributes() {
    using Severity = OpenFinding::Severity;
    const int type = m_raw->dataType;
    if (!(samplingRate() > 0) || samplingRate() > fastestSamplingRate)
        report(Severity::unusable, "SamplingRate is " + shortestText(samplingRate()) + " Hz");
    if (type != littleEndian16 && type != bigEndian16 && type != offsetBinary8)
        report(Severity::unusable, "DataType is " + std::to_string(type) +
                                       "; of 0, 4 and 6 it is none, so there are no samples");
    if (type == offsetBinary8)
        report(Severity::warning, "DataType is 6: of its one-byte samples the first half is shown");
    const std::int64_t frameBytes =
        std::int64_t{channelCount()} * (type == offsetBinary8 ? 1 : valueBytes);
    const std::int64_t rest = (m_raw->file.size() - headerLength()) % frameBytes;
    if (rest > 0)
        report(Severity::note, "its last " + std::to_string(rest) +
                                   " bytes are no whole sample of " +
                                   std::to_string(channelCount()) + " channels");
    if (headerLength() < 0)
        report(Severity::warning, "HeaderLength is " + std::to_string(headerLength()));
    if (m_raw->calibration == 0 || !std::isfinite(m_raw->calibration))
        report(Severity::warning, "Calibration is " + shortestText(m_raw->calibration));
}

bool InterleavedReader::readSampleInfo() {
    if (channelCount() < 1)
        return refuseWithoutChannels();
    const std::int64_t data = m_raw->file.size() - headerLength();
    // Two bytes a value even where the file stores one (data type 6), on purpose: of such a file
    // the first half is shown.
    const std::int64_t samples = data / (channelCount() * valueBytes);
    if (samples < fewestSamples)
        return refuse(2, "it holds " + std::to_string(std::max(samples, std::int64_t{0})) +
                             " samples of " + std::to_string(channelCount()) + " channels behind " +
                             std::to_string(headerLength()) + " header bytes, at least " +
                             std::to_string(fewestSamples) + " are needed");
    setMaxDataIndex(saturate<long>(samples - 1));
    SampleTime start;
    if (sampleTimeCount() == 0)
        addSampleTime(start);
    return true;
}

int InterleavedReader::chunkPts() { return std::max(_minReadPts(), 1); }

int InterleavedReader::getSampleChunk(long firstSample, short* buffer) {
    const std::int64_t frameValues = channelCount();
    const std::int64_t values = chunkPts() * frameValues;
    if (firstSample < 0 || !std::in_range<std::int32_t>(firstSample) || frameValues < 1)
        return 0;
    const bool oneByte = m_raw->dataType == offsetBinary8;
    const std::int64_t stored = oneByte ? 1 : valueBytes;
    const std::int64_t position = firstSample * frameValues * stored + headerLength();
    if (!oneByte && m_raw->dataType != littleEndian16 && m_raw->dataType != bigEndian16)
        return 0;
    const std::int64_t read = m_raw->file.readAt(position, buffer, values * stored) / stored;
    constexpr bool bigHost = std::endian::native == std::endian::big;
    if (oneByte)
        widenOffsetBinary(buffer, read);
    else if ((m_raw->dataType == bigEndian16) != bigHost)
        swapBytes(buffer, read);
    return saturate<int>(read / frameValues);
}

int InterleavedReader::montageCount() { return saturate<int>(m_raw->montages.size()); }

const char* InterleavedReader::montageName(int index) {
    if (index < 0 || index >= montageCount())
        return nullptr;
    return m_raw->montages[static_cast<std::size_t>(index)].name.c_str();
}

bool InterleavedReader::montageDefn(int index, std::ostream& stream) {
    if (index < 0 || index >= montageCount())
        return false;
    writeStoredMontage(stream, m_raw->montages[static_cast<std::size_t>(index)]);
    return true;
}

void InterleavedReader::montageApply(SourceMontage& montage, const char* name) {
    const int index = montageIndex(name);
    if (index >= 0)
        loadMontageEntries(montage, m_raw->montages[static_cast<std::size_t>(index)].entries());
}

bool InterleavedReader::readAttributeFile(std::istream& stream) {
    // The attribute file is this recording's header: what it leaves out must not be answered from
    // the one before. One that names no data file takes nothing.
    if (!readDataFileName(stream))
        return false;
    resetChannelNames();
    if (!DataReader::readAttributeFile(stream))
        return false;
    if (!readLayout(stream)) {
        // What stood before the gap counts for an open recording too.
        flushPages(false);
        loadChannelInfo();
        return false;
    }
    forgetRecording();
    m_raw->timeNotes = takeSampleTimes(stream, [this](SampleTime& anchor) {
        const int before = sampleTimeCount();
        addSampleTime(anchor);
        return sampleTimeCount() > before;
    });
    // Read where it is written: other formats have their patient from the recording itself.
    readPatientSection(stream, *patientRec());
    m_raw->montages = readStoredMontages(stream);
    flushPages(false);
    // Written again without being opened, it must say the same.
    if (!loadChannelInfo())
        return false;
    keepChannelNames();
    return true;
}

bool InterleavedReader::readLayout(std::istream& stream) {
    m_raw->numberNotes.clear();
    std::string text;
    const auto has = [&](const char* key) {
        text = profileValue(stream, pszINIFileInfo, key).value_or("").substr(0, longestLayoutValue);
        return !text.empty() || refuseWithout(key, stream);
    };
    // Numbers are read as far as they go, as in "1,5" or "0x10"; what was made of them is told.
    const auto tell = [&](const char* key, double taken) {
        double whole = 0.0;
        if (!wholeDouble(text, whole) || whole != taken)
            m_raw->numberNotes.push_back(std::string(key) + " is \"" +
                                         text.substr(0, longestTextTold) + "\", read as " +
                                         shortestText(taken));
    };
    if (!has("SamplingRate"))
        return false;
    setSamplingRate(leadingDouble(text));
    tell("SamplingRate", samplingRate());
    if (!has("HeaderLength"))
        return false;
    setHeaderLength(saturate<long>(leadingInteger(text)));
    tell("HeaderLength", static_cast<double>(headerLength()));
    if (!has("Calibration"))
        return false;
    m_raw->calibration = leadingDouble(text);
    tell("Calibration", m_raw->calibration);
    if (!has("WaveformCount"))
        return false;
    setChannelCount(saturate<int>(leadingInteger(text)));
    tell("WaveformCount", channelCount());
    if (!has("DataType"))
        return false;
    m_raw->dataType = saturate<int>(leadingInteger(text));
    tell("DataType", m_raw->dataType);
    return true;
}

bool InterleavedReader::writeAttributeFile(std::ostream& stream) {
    return DataReader::writeAttributeFile(stream);
}

// The file has no names. Those that the attribute file gave stand in for them: when a channel map
// is taken away they are shown again.
const char* InterleavedReader::_grid1(int channel) {
    const ChannelRecord* names = keptNames(channel);
    return names ? names->grid1 : "";
}

const char* InterleavedReader::_grid2(int channel) {
    const ChannelRecord* names = keptNames(channel);
    return names ? names->grid2 : "";
}

const char* InterleavedReader::_channelName(int channel) {
    const ChannelRecord* names = keptNames(channel);
    return names ? names->name : "";
}

double InterleavedReader::_calibration(int) { return m_raw->calibration; }
double InterleavedReader::_dcOffset(int) { return 0.0; }
int InterleavedReader::dataTypeCode() { return m_raw->dataType; }

} // namespace kvsig
