#include "kvsig/readers/FlatReader.h"

#include "kvsig/kernel/ClientEvent.h"
#include "kvsig/kernel/DataPage.h"
#include "kvsig/kernel/SampleTime.h"
#include "kvsig/readers/FlatRecording.h"
#include "kvsig/readers/FlatSamples.h"
#include "kvsig/readers/SegmentClock.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <string>
#include <utility>

namespace kvsig {
namespace {

using Severity = OpenFinding::Severity;

constexpr double usualPageSeconds = 5; // what open() asks for
constexpr double writtenStep = 0.001;  // anchors have three decimals in attribute files
constexpr std::int64_t mostSamples = std::numeric_limits<std::int32_t>::max();

// The start of a text; a character of UTF-8 that would be cut in two is left out.
std::string fittingPart(const std::string& text, std::size_t most) {
    std::size_t end = std::min(text.size(), most);
    const auto continues = [&] {
        return end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U;
    };
    for (int back = 0; back < 3 && end > 0 && continues(); ++back)
        --end;
    return text.substr(0, end);
}

/// The first of many alike, in words.
struct FirstOfMany {
    std::size_t count = 0;
    std::string first;

    template <typename Words>
    void add(Words words) {
        if (count++ == 0)
            first = words();
    }
    [[nodiscard]] std::string text() const {
        return count > 1 ? first + ", and so do " + std::to_string(count - 1) + " more" : first;
    }
};

} // namespace

struct FlatReader::State {
    FlatRecording recording;
    FlatSamples samples;
    SegmentClock clock;
    bool ownAnchors = false;

    [[nodiscard]] std::int64_t shown() const { return std::min(samples.count(), mostSamples); }
    /// Samples of the chunks that hold the whole recording.
    [[nodiscard]] double longestPage(std::int64_t chunk) const {
        const std::int64_t chunks = (std::max<std::int64_t>(shown(), 1) + chunk - 1) / chunk;
        return static_cast<double>(chunks * chunk);
    }
};

FlatReader::FlatReader() : m_flat(std::make_unique<State>()) {}
FlatReader::~FlatReader() = default;

void FlatReader::listEvents(std::vector<FlatEvent>&) {}
const FlatRecording& FlatReader::recording() const { return m_flat->recording; }

bool FlatReader::openFile() {
    if (m_flat->ownAnchors)
        clearSampleTimes();
    *m_flat = State();
    forgetSamples();
    setChannelCount(0);
    const bool described = describe(m_flat->recording);
    // Of headers that did not arrive nothing is believed, whatever was made of them.
    const std::string fault = m_flat->recording.samples.takeFault();
    if (fault.empty() ? described && accept() : refuse(2, fault))
        return true;
    *m_flat = State();
    return false;
}

// What a format hands over comes from a file: nothing of it is believed.
bool FlatReader::accept() {
    FlatRecording& recording = m_flat->recording;
    if (!(recording.rate > 0) || !std::isfinite(recording.rate))
        return refuse(2, "the sampling rate is " + shortestText(recording.rate) + " Hz");
    if (recording.channels.empty() || std::cmp_greater(recording.channels.size(), mostChannels))
        return refuse(2, "it has " + std::to_string(recording.channels.size()) +
                             " channels, 1 to " + std::to_string(mostChannels) + " can be read");
    if (const std::string fault = m_flat->samples.prepare(recording); !fault.empty())
        return refuse(2, fault);
    for (const FlatSegment& segment : recording.segments)
        if (!std::isfinite(segment.start))
            return refuse(2, "a segment begins at " + shortestText(segment.start) + " s");
    m_flat->clock = SegmentClock(recording);
    // A channel without a name is called by its number.
    for (std::size_t c = 0; c < recording.channels.size(); ++c)
        if (recording.channels[c].grid1.empty())
            recording.channels[c].grid1 = std::to_string(c + 1);
    const auto& pieces = recording.tracks.front().pieces;
    setHeaderLength(saturate<long>(pieces.empty() ? 0 : pieces.front().offset));
    setChannelCount(saturate<int>(recording.channels.size()));
    setSamplingRate(recording.rate);
    reportOddFacts();
    return true;
}

void FlatReader::reportOddFacts() {
    const FlatRecording& recording = m_flat->recording;
    const std::int64_t count = m_flat->samples.count();
    if (recording.rate > fastestSamplingRate)
        report(Severity::unusable, "the sampling rate is " + shortestText(recording.rate) + " Hz");
    const double frame = static_cast<double>(recording.channels.size()) * bytesPerSample();
    const double page =
        std::min(recording.rate * usualPageSeconds, m_flat->longestPage(_minReadPts()));
    if (page * frame > static_cast<double>(maxPageBytes))
        report(Severity::unusable, generalText(page / recording.rate, 4) + " s of " +
                                       std::to_string(recording.channels.size()) + " channels at " +
                                       shortestText(recording.rate) +
                                       " Hz do not fit a page: its samples read as zeros");
    if (count > mostSamples)
        report(Severity::warning, "of its " + std::to_string(count) + " samples the first " +
                                      std::to_string(mostSamples) + " are shown");
    for (std::size_t c = 0; c < recording.channels.size(); ++c) {
        const FlatChannel& channel = recording.channels[c];
        const double span = channel.physioHigh - channel.physioLow;
        if (!std::isfinite(span) || span == 0.0)
            report(Severity::warning, "channel " + std::to_string(c + 1) +
                                          (span == 0.0 ? " has no range: all its values are " +
                                                             shortestText(channel.physioLow)
                                                       : std::string(" has no finite values")));
    }
}

void FlatReader::close() { m_flat->recording.samples.close(); }

bool FlatReader::readSampleInfo() {
    if (m_flat->shown() < 1)
        return false;
    setMaxDataIndex(saturate<long>(m_flat->shown() - 1));
    if (sampleTimeCount() == 0)
        addAnchors();
    return true;
}

// The time base takes a clock that runs backwards for a passed midnight; here days are counted, so
// it is the recorder's clock that was set back.
void FlatReader::addAnchors() {
    constexpr double never = -std::numeric_limits<double>::infinity();
    const FlatRecording& recording = m_flat->recording;
    const auto& segments = recording.segments;
    double latest = never; // start
    double before = 0.0;   // seconds of the segment that ends last
    double shown = never;  // end of what follows the last anchor, by the clock as it is shown
    double end = never;    // the latest of these
    FirstOfMany setBack, overlaps;
    m_flat->ownAnchors = true;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        if (segments[i].count < 1 || m_flat->samples.segmentStarts()[i] > mostSamples)
            continue;
        const double start = segments[i].start;
        const double seconds = static_cast<double>(segments[i].count) / recording.rate;
        const auto begins = [&](const std::string& early) {
            return "segment " + std::to_string(i + 1) + " of " + std::to_string(segments.size()) +
                   " begins " + early;
        };
        if (start < latest) {
            setBack.add([&] {
                return begins(shortestText(std::round((latest - start) * 1e6) / 1e6) +
                              " s before an earlier one");
            });
            shown += seconds;
            end = std::max(end, shown);
            continue;
        }
        latest = start;
        if (start < end - recording.clockTolerance(before))
            overlaps.add([&] {
                return begins(fixedText(end - start, 3) + " s before what is before it ends");
            });
        shown = start + seconds;
        if (shown >= end) {
            end = shown;
            before = seconds;
        }
        SampleTime anchor;
        anchor.sample = saturate<std::int32_t>(m_flat->samples.segmentStarts()[i]);
        anchor.time = start;
        addSampleTime(anchor);
    }
    if (setBack.count > 0)
        report(Severity::warning,
               setBack.text() + ": samples there are shown as if there were no pause");
    if (overlaps.count > 0)
        report(Severity::warning, overlaps.text() + ": clock times there stand twice");
}

bool FlatReader::getPatientRec() {
    const FlatRecording& recording = m_flat->recording;
    PatientRec& patient = *patientRec();
    patient = recording.patient;
    // What is no date stays as the format gave it.
    if (recording.start.hasDate())
        copyText(patient.testDate, recording.start.dateText());
    if (recording.start.hasTime())
        copyText(patient.testTime, recording.start.timeText());
    return true;
}

int FlatReader::readEvents(std::deque<ClientEvent>& events) {
    std::vector<FlatEvent> listed;
    listEvents(listed);
    if (const std::string fault = m_flat->recording.samples.takeFault(); !fault.empty())
        logMessage(logWarning, filePath() + ": events are left out: " + fault);
    if (listed.size() >= mostEvents)
        logMessage(logWarning, filePath() + ": it has more than " + std::to_string(mostEvents) +
                                   " events, the rest is left out");
    const std::int64_t end = m_flat->shown();
    const std::size_t outside = std::erase_if(listed, [end](const FlatEvent& event) {
        return event.sample < 0 || event.sample > end || end == 0;
    });
    if (outside > 0)
        logMessage(logWarning, filePath() + ": events outside the recording are left out (" +
                                   std::to_string(outside) + ")");
    std::stable_sort(listed.begin(), listed.end(),
                     [](const FlatEvent& a, const FlatEvent& b) { return a.sample < b.sample; });
    for (const FlatEvent& event : listed) {
        ClientEvent& added = events.emplace_back();
        copyText(added.label, event.label);
        copyText(added.stateText, fittingPart(event.text, sizeof added.stateText - 1));
        added.sample = event.sample;
        added.duration = event.duration;
    }
    return saturate<int>(listed.size());
}

std::optional<std::int64_t> FlatReader::sampleAt(double clock) const {
    const auto place = m_flat->clock.placeOf(m_flat->recording, clock);
    return place ? std::optional(m_flat->samples.segmentStarts()[place->segment] + place->sample)
                 : std::nullopt;
}

double FlatReader::clockAt(std::int64_t sample) const {
    const auto& starts = m_flat->samples.segmentStarts();
    const auto next = std::upper_bound(starts.begin(), starts.end(), sample) - starts.begin();
    if (starts.empty())
        return 0.0;
    const auto index = static_cast<std::size_t>(next > 0 ? next - 1 : 0);
    return m_flat->recording.segments[index].start +
           static_cast<double>(sample - starts[index]) / m_flat->recording.rate;
}

double FlatReader::clockTolerance(double seconds) const {
    return m_flat->recording.clockTolerance(seconds) + (m_flat->ownAnchors ? 0.0 : writtenStep);
}

int FlatReader::bytesPerSample() { return m_flat->samples.narrow() ? 2 : 4; }

// About a second, but no more than there is: a few bytes of a header claim any rate.
int FlatReader::_minReadPts() {
    const int second = std::max(DataReader::_minReadPts(), 1);
    const std::int64_t shown = m_flat->shown();
    return shown > 0 ? saturate<int>(std::min<std::int64_t>(second, shown)) : second;
}

void FlatReader::setPageDuration(double seconds) {
    const double points = seconds * samplingRate(), most = m_flat->longestPage(_minReadPts());
    const bool isLonger = std::isfinite(points) && points > most;
    DataReader::setPageDuration(isLonger ? (most + 0.5) / samplingRate() : seconds);
}

int FlatReader::chunkPts() { return _minReadPts(); }

int FlatReader::getSampleChunk(long firstSample, short* buffer) {
    const FlatRecording& recording = m_flat->recording;
    const std::int64_t count = m_flat->shown();
    const int channels = channelCount();
    if (firstSample < 0 || firstSample >= count || !holdsShownChannels())
        return 0;
    const std::int64_t wanted = std::min<std::int64_t>(chunkPts(), count - firstSample);
    const auto readInto = [&]<typename Out>(Out* out) {
        return saturate<int>(m_flat->samples.read(recording, firstSample, wanted,
                                                  FlatTarget<Out>{out, channels, 1, channels}));
    };
    return bytesPerSample() == 2 ? readInto(static_cast<std::int16_t*>(buffer))
                                 : readInto(static_cast<std::int32_t*>(static_cast<void*>(buffer)));
}

// The host may have set another channel count; of more channels than the file's there is nothing to
// show.
bool FlatReader::holdsShownChannels() {
    return channelCount() > 0 &&
           std::cmp_less_equal(channelCount(), m_flat->recording.channels.size());
}

std::span<const int> FlatReader::channelsStoredWith(int channel) {
    if (!m_flat->samples.standApart() || !holdsShownChannels() || channel < 0 ||
        channel >= channelCount())
        return {};
    const int track = m_flat->recording.channels[static_cast<std::size_t>(channel)].track;
    return m_flat->samples.channelsOf(track, channelCount());
}

std::int64_t FlatReader::readPlanes(int channel, long first, std::int64_t count,
                                    const SamplePlanes& planes) {
    const FlatRecording& recording = m_flat->recording;
    const std::int64_t wanted = std::min(count, m_flat->shown() - first);
    if (first < 0 || wanted < 1 || channelsStoredWith(channel).empty())
        return 0;
    const int track = recording.channels[static_cast<std::size_t>(channel)].track;
    const auto readInto = [&]<typename Out>(Out* out) {
        return m_flat->samples.readTrack(recording, track, first, wanted,
                                         FlatTarget<Out>{out, 1, planes.length, channelCount()});
    };
    return bytesPerSample() == 2 ? readInto(static_cast<std::int16_t*>(planes.values))
                                 : readInto(static_cast<std::int32_t*>(planes.values));
}

double FlatReader::storedSamplingRate(int channel) {
    const auto& channels = m_flat->recording.channels;
    if (channel < 0 || channel >= channelCount() ||
        std::cmp_greater_equal(channel, channels.size()))
        return 0.0;
    const int track = channels[static_cast<std::size_t>(channel)].track;
    const double rate = m_flat->recording.tracks[static_cast<std::size_t>(track)].rate;
    return rate > 0 ? rate : samplingRate();
}

namespace {

// A channel outside the description has the facts of none.
const FlatChannel& channelOf(const FlatRecording& recording, int channel) {
    static const FlatChannel none;
    return channel >= 0 && std::cmp_less(channel, recording.channels.size())
               ? recording.channels[static_cast<std::size_t>(channel)]
               : none;
}

} // namespace

const char* FlatReader::_grid1(int channel) {
    return channelOf(m_flat->recording, channel).grid1.c_str();
}

const char* FlatReader::_grid2(int channel) {
    return channelOf(m_flat->recording, channel).grid2.c_str();
}

const char* FlatReader::_channelName(int channel) {
    const std::string& name = channelOf(m_flat->recording, channel).name;
    return name.empty() ? DataReader::_channelName(channel) : name.c_str();
}

double FlatReader::_calibration(int channel) {
    return channelOf(m_flat->recording, channel).calibration;
}

double FlatReader::_dcOffset(int channel) { return channelOf(m_flat->recording, channel).dcOffset; }

short FlatReader::_channelType(int channel) { return channelOf(m_flat->recording, channel).type; }

const char* FlatReader::_channelUnits(int channel) {
    return channelOf(m_flat->recording, channel).units.c_str();
}

double FlatReader::_physioHigh(int channel) {
    return channelOf(m_flat->recording, channel).physioHigh;
}

double FlatReader::_physioLow(int channel) {
    return channelOf(m_flat->recording, channel).physioLow;
}

std::int32_t FlatReader::_digitalHigh(int channel) {
    return channelOf(m_flat->recording, channel).digitalHigh;
}

std::int32_t FlatReader::_digitalLow(int channel) {
    return channelOf(m_flat->recording, channel).digitalLow;
}

} // namespace kvsig
