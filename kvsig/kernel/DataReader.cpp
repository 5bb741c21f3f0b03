#include "kvsig/kernel/DataReader.h"

#include "kvsig/kernel/ChannelTable.h"
#include "kvsig/kernel/FrameValues.h"
#include "kvsig/kernel/PageCache.h"
#include "kvsig/kernel/TimeBase.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/montage/names/ScalpGrid.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/SampleRange.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"
#include "kvsig/util/TimeText.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace kvsig {
namespace {

constexpr double pageSeconds = 5.0;

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

const char* defaultErrorWords(int code) {
    switch (code) {
    case 0:
        return "";
    case 1:
        return "the file cannot be opened";
    case 2:
        return "no usable channels or samples";
    case 3:
        return "an unsupported variant of the format";
    default:
        return "the recording cannot be read";
    }
}

} // namespace

const std::int16_t DataReader::m_defChannelType = ChannelRecord().type;
const char* const DataReader::m_defChannelUnits = "uV";
const std::int32_t DataReader::m_defDigitalHigh = 2048;
const std::int32_t DataReader::m_defDigitalLow = -2048;
const double DataReader::m_defPhysioHigh = ChannelRecord().physioHigh;
const double DataReader::m_defPhysioLow = ChannelRecord().physioLow;

struct DataReader::State final : PageSource {
    explicit State(DataReader& owner) : reader(owner) {}

    FrameLayout frameLayout() override {
        const int bytesPerSample = reader.bytesPerSample() == 2 ? 2 : 4;
        return {channelCount, bytesPerSample, std::max(reader._minReadPts(), 1)};
    }
    int largestChunk() override { return reader.chunkPts(); }
    long maxDataIndex() override { return reader.maxDataIndex(); }
    long sampleCount() override { return reader.sampleCount(); }
    int readChunk(long firstSample, short* buffer) override {
        return reader.getSampleChunk(firstSample, buffer);
    }

    DataReader& reader;
    std::int32_t lastError = 0;
    std::string errorText;
    std::string defaultErrorText; ///< what stands in for an empty errorText
    std::vector<OpenFinding> findings;
    char fileName[260] = "";
    std::string path;
    std::int32_t headerLength = 0;
    std::int16_t channelCount = 0;
    double samplingRate = 0.0;
    std::int32_t maxIndex = -1;
    std::int32_t fileType = 0;
    std::int32_t mapReferential = 1;
    char refGrid[16] = "Ref";
    std::int32_t hasChannelMap = 0;
    char channelMapName[32] = "";
    ChannelTable channels;
    TimeBase timeBase;
    PatientRec patient{};
    bool gridNamesAsNumbers = false;
    ULONG references = 0;
    PageCache pages;
    std::vector<PathInfo> paths;
    bool map1010 = false;
    bool inChunkDefault = false;
};

DataReader::DataReader() : m_state(std::make_unique<State>(*this)) {}

DataReader::~DataReader() { logMessage(logInfo, "DataReader: Removing all pages"); }

HRESULT DataReader::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv || !(riid == IID_IUnknown || riid == IID_IDataReader))
        return E_NOINTERFACE;
    *ppv = static_cast<IDataReader*>(this);
    AddRef();
    return S_OK;
}

ULONG DataReader::AddRef() {
    ++m_state->references;
    return 0;
}

ULONG DataReader::Release() {
    // A release too many must not destroy an object that was never handed out.
    if (m_state->references > 0 && --m_state->references == 0)
        delete this;
    return 0;
}

int DataReader::fileType() { return m_state->fileType; }
void DataReader::setFileType(int type) { m_state->fileType = type; }
const char* DataReader::fileName() { return m_state->fileName; }

void DataReader::setFileName(const char* name) {
    m_state->path = viewOf(name);
    copyText(m_state->fileName, m_state->path);
}

const std::string& DataReader::filePath() const { return m_state->path; }
long DataReader::headerLength() { return m_state->headerLength; }
short DataReader::channelCount() { return m_state->channelCount; }
int DataReader::fileCount() { return 1; }
const char* DataReader::partFileName(int part) { return part == 0 ? fileName() : nullptr; }
long DataReader::partSampleCount(int part) { return part == 0 ? sampleCount() : 0; }
double DataReader::partDuration(int part) { return part == 0 ? duration() : 0.0; }
double DataReader::samplingRate() { return m_state->samplingRate; }
long DataReader::sampleCount() { return nPoints(); }
double DataReader::duration() { return xEnd(); }
int DataReader::isMapReferential() { return m_state->mapReferential; }
const char* DataReader::refGrid() { return m_state->refGrid; }
double DataReader::channelSamplingRate(int) { return samplingRate(); }
long DataReader::channelSampleCount(int) { return sampleCount(); }

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

int DataReader::indexOfG1(const char* name) {
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
std::uint32_t DataReader::miscFlags() const { return 0; }
bool DataReader::onEdit() { return false; }

std::intptr_t DataReader::getItem(int item, int a, int) {
    switch (item) {
    case 0:
        return 0;
    case 1:
        return hasSampleLag() ? 1 : 0;
    case 2:
        return getSampleLag();
    case 1001: {
        thread_local double offset;
        offset = dcOffset(a);
        return reinterpret_cast<std::intptr_t>(&offset);
    }
    default:
        // The item's own number, not 0: hosts tell unknown items by it.
        return item;
    }
}

void DataReader::setItem(int item, int, int, std::uintptr_t value) {
    if (item == 2)
        setSampleLag(static_cast<long>(value));
    else if (item == 3 && value != 0)
        setPaths(reinterpret_cast<const char*>(value));
    else if (item == 1000 && value != 0)
        writeAttributeFile(*reinterpret_cast<std::ostream*>(value));
}

bool DataReader::open(const char* path) {
    setFileName(path);
    setLastError(0);
    m_state->findings.clear();
    if (!openFile())
        return false;
    // Samples of what was open before must not answer for this recording.
    if (m_state->pages.size() > 0)
        flushPages(false);
    if (!loadChannelInfo() || !readSampleInfo()) {
        setLastError(2);
        close();
        return false;
    }
    getPatientRec();
    setPageDuration(pageSeconds);
    return true;
}

int DataReader::getLastError() { return m_state->lastError; }

void DataReader::setLastError(int code) {
    // A sentence belongs to the code that it was stored with.
    if (code != m_state->lastError)
        m_state->errorText.clear();
    m_state->lastError = code;
}

const char* DataReader::lastErrorText() {
    if (m_state->lastError == 0 || !m_state->errorText.empty())
        return m_state->errorText.c_str();
    m_state->defaultErrorText = filePath() + ": " + defaultErrorWords(m_state->lastError);
    return m_state->defaultErrorText.c_str();
}

bool DataReader::refuse(int code, const std::string& what, const std::string& diagnostic) {
    setLastError(code);
    m_state->errorText = filePath() + ": " + what;
    logMessage(logWarning, diagnostic.empty() ? m_state->errorText : diagnostic);
    return false;
}

const std::vector<OpenFinding>& DataReader::openFindings() const { return m_state->findings; }

void DataReader::report(OpenFinding::Severity severity, const std::string& what) {
    m_state->findings.push_back({severity, what});
    if (severity != OpenFinding::Severity::note)
        logMessage(logWarning, filePath() + ": " + what);
}

int DataReader::chunkPts() { return _minReadPts(); }

// The two chunk defaults call each other on purpose: a format overrides at least one. When it
// overrides neither, the second default finds the first one at work and there is no data.
int DataReader::getSampleChunk(long firstSample, short* buffer) {
    const std::int64_t frameBytes = m_state->frameLayout().frameBytes();
    const bool inRange = firstSample >= 0 && std::in_range<std::int32_t>(firstSample);
    const std::int64_t position = inRange ? firstSample * frameBytes : -1;
    if (m_state->inChunkDefault || frameBytes <= 0 || position < 0 ||
        !std::in_range<long>(position))
        return 0;
    m_state->inChunkDefault = true;
    const int bytes = getChunk(static_cast<long>(position), buffer,
                               saturate<int>(std::max(chunkPts(), 1) * frameBytes));
    m_state->inChunkDefault = false;
    return saturate<int>(bytes / frameBytes);
}

int DataReader::getChunk(long bytePos, short* buffer, int) {
    const std::int64_t frameBytes = m_state->frameLayout().frameBytes();
    if (m_state->inChunkDefault || frameBytes <= 0 || bytePos < 0)
        return 0;
    m_state->inChunkDefault = true;
    const int samples = getSampleChunk(saturate<long>(bytePos / frameBytes), buffer);
    m_state->inChunkDefault = false;
    return saturate<int>(samples * frameBytes);
}

// Walks `first`..`last` in runs: consume(offset, count, run) with the offset of the run's first
// sample from `first`, and a null run where the recording has no samples.
template <typename Consume>
int DataReader::forEachRun(int channel, long first, long last, Consume consume) {
    const std::int64_t count = rangeLength(first, last);
    if (count == 0)
        return 0;
    const std::int64_t beforeStart = first >= 0 ? 0 : last < 0 ? count : -std::int64_t{first};
    if (beforeStart > 0)
        consume(std::int64_t{0}, beforeStart, static_cast<const PageRun*>(nullptr));
    std::int64_t done = beforeStart;
    while (done < count) {
        const long index = static_cast<long>(first + done);
        const DataPage* page = channelRecord(channel) ? pageAtIndex(index) : nullptr;
        if (!page) {
            consume(done, count - done, static_cast<const PageRun*>(nullptr));
            break;
        }
        const std::int64_t length = std::min(count - done, std::int64_t{page->end} - index + 1);
        const PageRun run{*page, m_state->frameLayout(), channel, index, length};
        consume(done, length, &run);
        done += length;
    }
    return static_cast<int>(count);
}

int DataReader::getData(int channel, long first, long last, float* out, double gain,
                        int accumulate) {
    ValueMap map;
    map.linear = channelType(channel) == 100;
    map.scale = calibration(channel) * gain;
    if (map.linear) {
        map.digitalLow = digitalLow(channel);
        map.digitalSpan = static_cast<double>(digitalHigh(channel)) - map.digitalLow;
        map.physioLow = physioLow(channel);
        map.physioSpan = physioHigh(channel) - map.physioLow;
    }
    return forEachRun(channel, first, last,
                      [&](std::int64_t offset, std::int64_t count, const PageRun* run) {
                          if (run)
                              mapValues(*run, map, accumulate != 0, out + offset);
                          else if (accumulate == 0)
                              std::fill_n(out + offset, count, 0.0F);
                      });
}

int DataReader::getRawData(int channel, long first, long last, std::int32_t* out) {
    return forEachRun(channel, first, last,
                      [&](std::int64_t offset, std::int64_t count, const PageRun* run) {
                          if (run)
                              copyRaw(*run, out + offset);
                          else
                              std::fill_n(out + offset, count, 0);
                      });
}

DataPage* DataReader::pageAtIndex(long index) { return m_state->pages.pageAt(index, *m_state); }

bool DataReader::readPageAtIndex(DataPage* page, long index) {
    return page && index >= 0 && m_state->pages.readPage(*page, index, *m_state);
}

int DataReader::sampleTimeCount() { return saturate<int>(m_state->timeBase.anchors().size()); }

void DataReader::getSampleTime(int index, SampleTime& out) {
    if (index >= 0 && index < sampleTimeCount())
        out = m_state->timeBase.anchors()[static_cast<std::size_t>(index)];
}

double DataReader::getClockTime(double elapsed) {
    return m_state->timeBase.clockTime(elapsed, samplingRate());
}

double DataReader::getElapsedTime(double clock) {
    return m_state->timeBase.elapsedTime(clock, samplingRate());
}

void DataReader::addSampleTime(SampleTime& anchor) { m_state->timeBase.add(anchor); }

void DataReader::forgetSamples() {
    setMaxDataIndex(-1);
    if (m_state->pages.size() > 0)
        flushPages(false);
}

void DataReader::clearSampleTimes() { m_state->timeBase.clear(); }
bool DataReader::getPatientRec() { return false; }
bool DataReader::hasPatientInfo() { return true; }

bool DataReader::patientInfo(std::ostream& stream, bool) {
    writePatientInfo(stream, m_state->patient);
    return true;
}

PatientRec* DataReader::patientRec() { return &m_state->patient; }

bool DataReader::getPatientName(char* out) {
    const std::string name = displayName(m_state->patient);
    if (name.empty())
        return false;
    copyText(out, PatientRec::displayNameSize, name);
    return true;
}

bool DataReader::testInfo(std::ostream& stream) {
    char clock[realToTimeSize];
    writeText(stream, std::string("FileName: ") + fileName() + "\n");
    writeText(stream, std::string("TestDuration: ") +
                          RealToTime(duration(), clock, true, false, false) + "\n");
    writeText(stream, "Channels: " + std::to_string(channelCount()) + "\n");
    writeText(stream, "SamplingRate: " + shortestText(samplingRate()) + "\n");
    writeText(stream, std::string("MultiFile:\t") + (fileCount() > 1 ? "Yes" : "No") + "\n");
    return true;
}

int DataReader::readEvents(std::deque<ClientEvent>&) { return 0; }
bool DataReader::updateState(const ClientEvent&) { return false; }
bool DataReader::updateState(const ClientEvent&, int) { return false; }
int DataReader::montageCount() { return 0; }
const char* DataReader::montageName(int) { return ""; }

int DataReader::montageIndex(const char* name) {
    for (int i = 0; i < montageCount(); ++i)
        if (equalNoCase(viewOf(montageName(i)), viewOf(name)))
            return i;
    return -1;
}

bool DataReader::montageDefn(int, std::ostream&) { return false; }
short DataReader::getMaxPages() { return m_state->pages.maxPages; }
void DataReader::setMaxPages(short count) { m_state->pages.maxPages = count; }
int DataReader::getPagePts() { return m_state->pages.pagePoints; }

void DataReader::setPageDuration(double seconds) {
    const double points = seconds * samplingRate();
    const std::int32_t chunk = std::max(_minReadPts(), 1);
    const std::int32_t whole = std::isfinite(points) ? saturate<std::int32_t>(points) : 0;
    m_state->pages.pagePoints = std::max(whole / chunk, 1) * chunk;
}

void DataReader::flushPages(bool incompleteOnly) {
    if (incompleteOnly)
        m_state->pages.flushIncomplete();
    else
        m_state->pages.flushAll();
}

const char* DataReader::builtinChannelMapName(int index) {
    if (index == 0)
        return "(Default)";
    return index == 1 ? "(Private)" : "";
}

const char* DataReader::getChannelMapName() { return builtinChannelMapName(0); }
int DataReader::getChannelMapCount() { return 2; }
const char* DataReader::getChannelMapNames(int index) { return builtinChannelMapName(index); }
bool DataReader::applyChannelMapDefn(const char*, std::istream&) { return false; }
bool DataReader::getChannelMapDefn(const char*, std::ostream&) { return false; }
bool DataReader::addChannelMapDefn(const char*, std::istream&) { return false; }
bool DataReader::deleteChannelMapDefn(const char*) { return false; }
bool DataReader::readAttributeFile(std::istream&) { return false; }
bool DataReader::writeAttributeFile(std::ostream&) { return false; }
int DataReader::hostFlag() { return 1; }
int DataReader::hostItemFlag(int, int, int) { return 1; }
int DataReader::hostChannelFlag(int, int) { return 1; }
int DataReader::hasChannelMap() { return m_state->hasChannelMap; }
void DataReader::setChannelMapName(const char* name) { copyText(m_state->channelMapName, name); }
int DataReader::bytesPerSample() { return 2; }
bool DataReader::isMap1010() { return m_state->map1010; }
std::uint32_t DataReader::miscFlags2() const { return 0; }
HostRecord DataReader::hostRecordA(int) { return {}; }
HostRecord DataReader::hostRecordB(int) { return {}; }

// Electrodes off the scalp have references of their own, so they do not count.
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
int DataReader::_minReadPts() { return saturate<int>(samplingRate()); }
void DataReader::montageApply(SourceMontage&, const char*) {}

bool DataReader::setDefChannelInfo() {
    m_state->channels.growTo(m_state->channelCount);
    return true;
}

bool DataReader::loadChannelInfo() {
    setDefChannelInfo();
    m_state->map1010 = false;
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
        if (isOnly1010(record->grid1))
            m_state->map1010 = true;
    }
    m_state->mapReferential = _isMapReferential();
    return true;
}

bool DataReader::readChannelMap(std::istream&, const char*) { return false; }
const char* DataReader::channelMapName() { return m_state->channelMapName; }
long DataReader::maxDataIndex() { return m_state->maxIndex; }
void DataReader::setMaxDataIndex(long index) { m_state->maxIndex = saturate<std::int32_t>(index); }
long DataReader::nPoints() { return saturate<long>(std::int64_t{maxDataIndex()} + 1); }
double DataReader::xStart() { return 0.0; }

double DataReader::xEnd() {
    const double rate = samplingRate();
    return nPoints() > 0 && rate > 0 ? static_cast<double>(nPoints()) / rate : 0.0;
}

void DataReader::setChannelCount(int count) {
    m_state->channelCount = saturate<std::int16_t>(count);
}
void DataReader::setSamplingRate(double hertz) { m_state->samplingRate = hertz; }
void DataReader::setHeaderLength(long bytes) {
    m_state->headerLength = saturate<std::int32_t>(bytes);
}
void DataReader::setPaths(const char* text) { m_state->paths = splitPaths(text); }
std::vector<PathInfo> DataReader::getPaths() { return m_state->paths; }
bool DataReader::hasSampleLag() { return false; }
long DataReader::getSampleLag() { return 0; }
void DataReader::setSampleLag(long) {}
long DataReader::storedSampleCount() { return sampleCount(); }

double DataReader::storedSamplingRate(int channel) {
    return channelRecord(channel) ? channelSamplingRate(channel) : 0.0;
}

} // namespace kvsig
