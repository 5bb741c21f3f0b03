#include "kvsig/readers/SyncReader.h"

#include "kvsig/kernel/DataReader.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/SampleRange.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace kvsig {
namespace {

constexpr int pairFileType = 0x20000000;
constexpr int hasLagItem = 1;
constexpr int lagItem = 2;

// A reader without a recording: it holds the pair's own name and error, stands in for a missing
// member, and gives the answers that a pair shares with every reader.
class EmptyReader final : public DataReader {
  public:
    bool openFile() override { return false; }
    void close() override {}
    bool readSampleInfo() override { return false; }

    using DataReader::refuse;

  protected:
    const char* _grid1(int) override { return ""; }
    const char* _grid2(int) override { return ""; }
    double _calibration(int) override { return 0.0; }
    double _dcOffset(int) override { return 0.0; }
};

std::string whyItFailed(IDataReader& reader) {
    std::string sentence;
    if (auto* recording = dynamic_cast<DataReader*>(&reader))
        sentence = recording->lastErrorText();
    else if (auto* pair = dynamic_cast<SyncReader*>(&reader))
        sentence = pair->lastErrorText();
    return sentence;
}

// Spreads `held` evenly over `out`: each value stays until the next one's time has come.
void sampleAndHold(const std::vector<float>& held, float* out, int wanted) {
    const auto count = static_cast<double>(held.size());
    int i = 0;
    for (std::size_t j = 0; j < held.size(); ++j) {
        const double until = static_cast<double>(j + 1) / count;
        while (i < wanted && static_cast<double>(i) / wanted < until)
            out[i++] = held[j];
    }
}

} // namespace

struct SyncReader::State {
    enum class Faster : std::int16_t { neither, first, second };

    struct Route {
        IDataReader& reader;
        int channel;
        Faster place;
    };

    IDataReader& firstReader() { return first ? *first : own; }
    IDataReader& secondReader() { return second ? *second : own; }

    [[nodiscard]] int channelOfSecond(int channel) const {
        return saturate<int>(std::int64_t{channel} - firstCount);
    }

    Route route(int channel) {
        if (channel < firstCount)
            return {firstReader(), channel, Faster::first};
        return {secondReader(), channelOfSecond(channel), Faster::second};
    }

    template <typename Answer>
    Answer routed(int channel, Answer (IDataReader::*ask)(int)) {
        const Route to = route(channel);
        return (to.reader.*ask)(to.channel);
    }

    bool openMember(IDataReader& member) {
        // The file name is cut to its field; the path that the member was given is not.
        const auto* recording = dynamic_cast<DataReader*>(&member);
        const std::string path = recording ? recording->filePath() : member.fileName();
        if (member.open(path.c_str()))
            return true;
        memberSentence = whyItFailed(member);
        own.setFileName(member.fileName());
        own.setLastError(1);
        return false;
    }

    int stretch(const Route& from, long firstSample, int wanted, float* out, double gain,
                int accumulate) {
        const double rate = from.reader.samplingRate();
        // At most what was wanted: a member whose rate rose after open() asks for no more.
        const int count = std::clamp(saturate<int>(wanted * rate / commonRate), 0, wanted);
        const long start =
            std::min(saturate<long>(static_cast<double>(firstSample) * rate / commonRate),
                     std::numeric_limits<long>::max() - count);
        try {
            slowSamples.resize(static_cast<std::size_t>(count));
        } catch (const std::bad_alloc&) {
            logMessage(logWarning,
                       "SyncReader: no memory to stretch " + std::to_string(count) + " samples");
            return 0;
        }
        if (count > 0)
            from.reader.getData(from.channel, start, start + count - 1, slowSamples.data(), gain,
                                accumulate);
        sampleAndHold(slowSamples, out, wanted);
        return wanted;
    }

    EmptyReader own;
    IDataReader* first = nullptr;
    IDataReader* second = nullptr;
    ULONG references = 0;
    std::string memberSentence; ///< what the member that failed to open says of it
    std::int32_t lag = 0;
    std::int16_t firstCount = 0;
    std::int16_t secondCount = 0;
    double commonRate = 0.0;
    Faster faster = Faster::neither;
    std::vector<float> slowSamples; ///< kept between calls: the slower reader accumulates in it
};

SyncReader::SyncReader(IDataReader* first, IDataReader* second)
    : m_state(std::make_unique<State>()) {
    m_state->first = first;
    m_state->second = second;
}

SyncReader::~SyncReader() {
    m_state->firstReader().close();
    m_state->secondReader().close();
}

IDataReader* SyncReader::first() const { return m_state->first; }
IDataReader* SyncReader::second() const { return m_state->second; }

HRESULT SyncReader::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv || !(riid == IID_IUnknown || riid == IID_IDataReader))
        return E_NOINTERFACE;
    *ppv = static_cast<IDataReader*>(this);
    return S_OK;
}

ULONG SyncReader::AddRef() {
    ++m_state->references;
    return 0;
}

ULONG SyncReader::Release() {
    // A release too many must not destroy an object that was never handed out.
    if (m_state->references > 0 && --m_state->references == 0)
        delete this;
    return 0;
}

bool SyncReader::open(const char* path) {
    setFileName(path);
    setLastError(0);
    return openFile();
}

bool SyncReader::openFile() {
    State& s = *m_state;
    if (!s.first || !s.second) {
        s.memberSentence.clear();
        return s.own.refuse(1, s.first ? "the pair has no second recording"
                                       : "the pair has no first recording");
    }
    if (!s.openMember(*s.first) || !s.openMember(*s.second))
        return false;
    s.firstCount = s.first->channelCount();
    s.secondCount = s.second->channelCount();
    const double firstRate = s.first->samplingRate();
    const double secondRate = s.second->samplingRate();
    s.faster = State::Faster::neither;
    s.commonRate = firstRate;
    if (secondRate < firstRate) {
        s.faster = State::Faster::first;
    } else if (firstRate < secondRate) {
        s.faster = State::Faster::second;
        s.commonRate = secondRate;
    }
    return true;
}

void SyncReader::close() {
    m_state->firstReader().close();
    m_state->secondReader().close();
}

int SyncReader::getLastError() { return m_state->own.getLastError(); }

void SyncReader::setLastError(int code) {
    // A sentence belongs to the code that it was stored with.
    if (code != getLastError())
        m_state->memberSentence.clear();
    m_state->own.setLastError(code);
}

const char* SyncReader::lastErrorText() {
    return m_state->memberSentence.empty() ? m_state->own.lastErrorText()
                                           : m_state->memberSentence.c_str();
}

int SyncReader::getData(int channel, long first, long last, float* out, double gain,
                        int accumulate) {
    const int wanted = rangeLength(first, last);
    if (wanted == 0)
        return 0;
    const State::Route to = m_state->route(channel);
    if (to.place == State::Faster::second) {
        const long lag = m_state->lag;
        // Where the indices end no recording has samples, shifted or not.
        if (lag >= 0 ? first >= std::numeric_limits<long>::min() + lag
                     : last <= std::numeric_limits<long>::max() + lag) {
            first -= lag;
            last -= lag;
        }
    }
    if (m_state->faster == State::Faster::neither || m_state->faster == to.place)
        return to.reader.getData(to.channel, first, last, out, gain, accumulate);
    return m_state->stretch(to, first, wanted, out, gain, accumulate);
}

int SyncReader::getSampleChunk(long firstSample, short* buffer) {
    IDataReader& reader = m_state->firstReader();
    const int frameBytes = reader.channelCount() * reader.bytesPerSample();
    if (frameBytes > channelCount() * bytesPerSample())
        return 0;
    return reader.getSampleChunk(firstSample, buffer);
}

std::intptr_t SyncReader::getItem(int item, int, int) {
    if (item == hasLagItem)
        return 1;
    return item == lagItem ? m_state->lag : 0;
}

void SyncReader::setItem(int item, int, int, std::uintptr_t value) {
    if (item == lagItem)
        m_state->lag = saturate<std::int32_t>(static_cast<std::intptr_t>(value));
}

short SyncReader::channelCount() {
    return saturate<short>(m_state->firstCount + m_state->secondCount);
}

int SyncReader::indexOfG1(const char* name) {
    const int found = m_state->firstReader().indexOfG1(name);
    return found >= 0 ? found : m_state->secondReader().indexOfG1(name);
}

int SyncReader::indexOfG2(const char* name) {
    const int found = m_state->firstReader().indexOfG2(name);
    return found >= 0 ? found : m_state->secondReader().indexOfG2(name);
}

void SyncReader::setZeroChannel(int channel, bool zero) {
    if (channel < m_state->firstCount)
        m_state->firstReader().setZeroChannel(channel, zero);
    // In every case, on purpose: a channel of the first reader has a negative number in the second,
    // which ignores it.
    m_state->secondReader().setZeroChannel(m_state->channelOfSecond(channel), zero);
}

// The pair's own.
int SyncReader::fileType() { return pairFileType; }
void SyncReader::setFileType(int) {}
const char* SyncReader::fileName() { return m_state->own.fileName(); }
void SyncReader::setFileName(const char* name) { m_state->own.setFileName(name); }
double SyncReader::samplingRate() { return m_state->commonRate; }
double SyncReader::channelSamplingRate(int) { return m_state->commonRate; }
int SyncReader::montageIndex(const char*) { return -1; }
const char* SyncReader::getChannelMapName() { return builtinChannelMapName(0); }
const char* SyncReader::getChannelMapNames(int) { return builtinChannelMapName(0); }
bool SyncReader::applyChannelMapDefn(const char*, std::istream&) { return false; }
bool SyncReader::getChannelMapDefn(const char*, std::ostream&) { return false; }
bool SyncReader::addChannelMapDefn(const char*, std::istream&) { return false; }
bool SyncReader::deleteChannelMapDefn(const char*) { return false; }
bool SyncReader::readAttributeFile(std::istream&) { return false; }
bool SyncReader::writeAttributeFile(std::ostream&) { return false; }

// Of the reader that has the channel.
long SyncReader::channelSampleCount(int channel) {
    return m_state->routed(channel, &IDataReader::channelSampleCount);
}
short SyncReader::channelType(int channel) {
    return m_state->routed(channel, &IDataReader::channelType);
}
short SyncReader::channelSubType(int channel) {
    return m_state->routed(channel, &IDataReader::channelSubType);
}
const char* SyncReader::channelUnits(int channel) {
    return m_state->routed(channel, &IDataReader::channelUnits);
}
const char* SyncReader::grid1(int channel) { return m_state->routed(channel, &IDataReader::grid1); }
const char* SyncReader::grid2(int channel) { return m_state->routed(channel, &IDataReader::grid2); }
const char* SyncReader::channelName(int channel) {
    return m_state->routed(channel, &IDataReader::channelName);
}
double SyncReader::calibration(int channel) {
    return m_state->routed(channel, &IDataReader::calibration);
}
double SyncReader::physioHigh(int channel) {
    return m_state->routed(channel, &IDataReader::physioHigh);
}
double SyncReader::physioLow(int channel) {
    return m_state->routed(channel, &IDataReader::physioLow);
}
std::int32_t SyncReader::digitalHigh(int channel) {
    return m_state->routed(channel, &IDataReader::digitalHigh);
}
std::int32_t SyncReader::digitalLow(int channel) {
    return m_state->routed(channel, &IDataReader::digitalLow);
}
bool SyncReader::zeroChannel(int channel) {
    return m_state->routed(channel, &IDataReader::zeroChannel);
}

// Of the first reader.
long SyncReader::headerLength() { return m_state->firstReader().headerLength(); }
int SyncReader::fileCount() { return m_state->firstReader().fileCount(); }
const char* SyncReader::partFileName(int part) { return m_state->firstReader().partFileName(part); }
long SyncReader::partSampleCount(int part) { return m_state->firstReader().partSampleCount(part); }
double SyncReader::partDuration(int part) { return m_state->firstReader().partDuration(part); }
long SyncReader::sampleCount() { return m_state->firstReader().sampleCount(); }
double SyncReader::duration() { return m_state->firstReader().duration(); }
int SyncReader::isMapReferential() { return m_state->firstReader().isMapReferential(); }
const char* SyncReader::refGrid() { return m_state->firstReader().refGrid(); }
bool SyncReader::gridNamesAsNumbers() { return m_state->firstReader().gridNamesAsNumbers(); }
std::uint32_t SyncReader::miscFlags() const { return m_state->firstReader().miscFlags(); }
bool SyncReader::onEdit() { return m_state->firstReader().onEdit(); }
int SyncReader::chunkPts() { return m_state->firstReader().chunkPts(); }
bool SyncReader::readSampleInfo() { return m_state->firstReader().readSampleInfo(); }
int SyncReader::sampleTimeCount() { return m_state->firstReader().sampleTimeCount(); }
void SyncReader::getSampleTime(int index, SampleTime& out) {
    m_state->firstReader().getSampleTime(index, out);
}
double SyncReader::getClockTime(double elapsed) {
    return m_state->firstReader().getClockTime(elapsed);
}
double SyncReader::getElapsedTime(double clock) {
    return m_state->firstReader().getElapsedTime(clock);
}
bool SyncReader::getPatientRec() { return m_state->firstReader().getPatientRec(); }
bool SyncReader::hasPatientInfo() { return m_state->firstReader().hasPatientInfo(); }
bool SyncReader::patientInfo(std::ostream& stream, bool flag) {
    return m_state->firstReader().patientInfo(stream, flag);
}
PatientRec* SyncReader::patientRec() { return m_state->firstReader().patientRec(); }
bool SyncReader::getPatientName(char* out) { return m_state->firstReader().getPatientName(out); }
bool SyncReader::testInfo(std::ostream& stream) { return m_state->firstReader().testInfo(stream); }
int SyncReader::readEvents(std::deque<ClientEvent>& events) {
    return m_state->firstReader().readEvents(events);
}
short SyncReader::getMaxPages() { return m_state->firstReader().getMaxPages(); }
int SyncReader::getPagePts() { return m_state->firstReader().getPagePts(); }

// Of both readers.
void SyncReader::setGridNamesAsNumbers(bool numbers) {
    m_state->firstReader().setGridNamesAsNumbers(numbers);
    m_state->secondReader().setGridNamesAsNumbers(numbers);
}
void SyncReader::setMaxPages(short count) {
    m_state->firstReader().setMaxPages(count);
    m_state->secondReader().setMaxPages(count);
}
void SyncReader::setPageDuration(double seconds) {
    m_state->firstReader().setPageDuration(seconds);
    m_state->secondReader().setPageDuration(seconds);
}
void SyncReader::flushPages(bool incompleteOnly) {
    m_state->firstReader().flushPages(incompleteOnly);
    m_state->secondReader().flushPages(incompleteOnly);
}

// As any reader's.
bool SyncReader::updateState(const ClientEvent& event) { return m_state->own.updateState(event); }
bool SyncReader::updateState(const ClientEvent& event, int channel) {
    return m_state->own.updateState(event, channel);
}
int SyncReader::montageCount() { return m_state->own.montageCount(); }
const char* SyncReader::montageName(int index) { return m_state->own.montageName(index); }
bool SyncReader::montageDefn(int index, std::ostream& stream) {
    return m_state->own.montageDefn(index, stream);
}
const char* SyncReader::builtinChannelMapName(int index) {
    return m_state->own.builtinChannelMapName(index);
}
int SyncReader::getChannelMapCount() { return m_state->own.getChannelMapCount(); }
int SyncReader::hostFlag() { return m_state->own.hostFlag(); }
int SyncReader::hostItemFlag(int a, int b, int c) { return m_state->own.hostItemFlag(a, b, c); }
int SyncReader::hostChannelFlag(int a, int b) { return m_state->own.hostChannelFlag(a, b); }
int SyncReader::hasChannelMap() { return m_state->own.hasChannelMap(); }
void SyncReader::setChannelMapName(const char* name) { m_state->own.setChannelMapName(name); }
int SyncReader::bytesPerSample() { return m_state->own.bytesPerSample(); }
bool SyncReader::isMap1010() { return m_state->own.isMap1010(); }
std::uint32_t SyncReader::miscFlags2() const { return m_state->own.miscFlags2(); }
HostRecord SyncReader::hostRecordA(int index) { return m_state->own.hostRecordA(index); }
HostRecord SyncReader::hostRecordB(int index) { return m_state->own.hostRecordB(index); }

} // namespace kvsig
