#include "kvsig/kernel/DataReader.h"

#include "kvsig/kernel/ReaderState.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"
#include "kvsig/util/TimeText.h"

namespace kvsig {
namespace {

constexpr double pageSeconds = 5.0;

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
    if (m_state->holdsOpened && m_state->path != m_state->openedPath)
        forgetRecording();
    // Samples of what was open before must not answer for this recording.
    if (m_state->pages.size() > 0)
        flushPages(false);
    if (!loadChannelInfo() || !readSampleInfo()) {
        setLastError(2);
        close();
        return false;
    }
    m_state->holdsOpened = true;
    m_state->openedPath = m_state->path;
    reportIgnoredNames();
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
void DataReader::clearSampleTimes() { m_state->timeBase.clear(); }

void DataReader::forgetRecording() {
    clearSampleTimes();
    m_state->patient = {};
    m_state->holdsOpened = false;
}

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
int DataReader::hostFlag() { return 1; }
int DataReader::hostItemFlag(int, int, int) { return 1; }
int DataReader::hostChannelFlag(int, int) { return 1; }
int DataReader::bytesPerSample() { return 2; }
bool DataReader::isMap1010() { return m_state->map1010; }
std::uint32_t DataReader::miscFlags2() const { return 0; }
HostRecord DataReader::hostRecordA(int) { return {}; }
HostRecord DataReader::hostRecordB(int) { return {}; }

int DataReader::_minReadPts() { return saturate<int>(samplingRate()); }
void DataReader::montageApply(SourceMontage&, const char*) {}

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
int DataReader::dataTypeCode() { return 0; }
long DataReader::storedSampleCount() { return sampleCount(); }
std::vector<OpenFinding> DataReader::inspectFile() { return {}; }

double DataReader::storedSamplingRate(int channel) {
    return channelRecord(channel) ? channelSamplingRate(channel) : 0.0;
}

} // namespace kvsig
