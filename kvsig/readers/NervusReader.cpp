#include "kvsig/readers/NervusReader.h"

#include "kvsig/readers/ClockEvents.h"
#include "kvsig/readers/FlatRecording.h"
#include "kvsig/readers/NervusChannels.h"
#include "kvsig/readers/NervusContainer.h"
#include "kvsig/readers/NervusLayout.h"
#include "kvsig/readers/NervusRecords.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>
#include <vector>

namespace kvsig {
namespace {

using Severity = OpenFinding::Severity;

constexpr std::int64_t sampleBytes = 2;
constexpr FlatInteger storedSample{sampleBytes, true, false};
constexpr double mostSegmentSamples = 1099511627776.0; // 2^40: sums of all segments stay in 64 bits
constexpr double nearlyWhole = 0.01;                   // samples

/// A channel that is shown.
struct Kept {
    std::int64_t number = 0; ///< in the file, from 0
    double rate = 0.0;
    const nervus::Section* samples = nullptr;
    std::vector<std::int64_t> counts{}; ///< own samples of every segment, as its duration says
};

double samplesOf(double duration, double rate) {
    return std::min(std::round(duration * rate), mostSegmentSamples);
}

std::string nameOf(const Kept& channel) { return "channel " + std::to_string(channel.number + 1); }

} // namespace

struct NervusReader::State {
    nervus::Container container;
    std::vector<double> durations; ///< of the segments, in seconds
    std::vector<Kept> kept;        ///< the recording's channels
};

NervusReader::NervusReader() : m_state(std::make_unique<State>()) {}
NervusReader::~NervusReader() = default;

bool NervusReader::isFileType(const char* path) {
    File file;
    if (!file.open(path))
        return false;
    const HeaderBlock head = HeaderBlock::readFrom(file, nervus::tags);
    const bool older = file.size() >= nervus::tags && valueOf(head, nervus::indexPointer) == 0;
    return nervus::isContainer(file) || (older && equalNoCase(nameEnding(viewOf(path)), ".e"));
}

bool NervusReader::describe(FlatRecording& recording) {
    *m_state = State();
    std::string reason;
    if (!recording.samples.open(filePath().c_str(), &reason))
        return refuse(1, reason);
    m_state->container = nervus::readContainer(recording.samples);
    const nervus::Container& container = m_state->container;
    if (!container.fault.empty())
        return refuse(container.error, container.fault);
    for (const std::string& oddity : container.oddities)
        report(Severity::warning, oddity);
    if (!describeSegments(recording) || !describeChannels(recording) || !countSamples(recording))
        return false;
    if (const std::string odd =
            nervus::readPatient(recording.samples, container, recording.patient);
        !odd.empty())
        report(Severity::warning, odd);
    return true;
}

bool NervusReader::describeSegments(FlatRecording& recording) {
    const nervus::Section& section = m_state->container.section(nervus::segmentTag);
    const std::int64_t count = section.length / nervus::segment::bytes;
    if (count < 1)
        return refuse(2, "its section of segments has " + std::to_string(section.length) +
                             " bytes, a segment takes " + std::to_string(nervus::segment::bytes));
    if (count > mostSegments)
        return refuse(2, "it has " + std::to_string(count) + " segments, " +
                             std::to_string(mostSegments) + " can be read");
    if (const std::int64_t rest = section.length % nervus::segment::bytes; rest > 0)
        report(Severity::warning, "the last " + std::to_string(rest) +
                                      " bytes of its section of segments are no whole segment");
    const HeaderBlock block = section.read(recording.samples, 0, count * nervus::segment::bytes);
    recording.clockDrifts = true;
    double next = 0.0;
    std::int64_t dateless = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t base = i * nervus::segment::bytes;
        const double duration = valueOf(block, nervus::segment::duration, base);
        if (!(duration >= 0.0) || !std::isfinite(duration))
            return refuse(2, "segment " + std::to_string(i + 1) + " lasts " +
                                 shortestText(duration) + " s");
        const CalendarTime start = nervus::momentOf(valueOf(block, nervus::segment::start, base));
        if (i == 0) {
            recording.start = start;
            next = start.secondOfDay();
        }
        const bool placed = start.hasDate() && recording.start.hasDate();
        dateless += placed ? 0 : 1;
        const double clock = placed ? start.secondsFromDayOf(recording.start) : next;
        recording.segments.push_back({0, clock});
        m_state->durations.push_back(duration);
        next = clock + duration;
    }
    if (dateless > 0)
        report(Severity::warning, std::to_string(dateless) + " of " + std::to_string(count) +
                                      " segments have no date: they are shown as if they followed "
                                      "without a pause");
    return true;
}

bool NervusReader::describeChannels(FlatRecording& recording) {
    const nervus::Container& container = m_state->container;
    nervus::ChannelTable table = nervus::readChannels(recording.samples, container);
    if (!table.fault.empty())
        return refuse(table.error, table.fault);
    for (const std::string& oddity : table.oddities)
        report(Severity::warning, oddity);
    for (std::size_t i = 0; i < table.channels.size(); ++i) {
        nervus::ChannelFacts& facts = table.channels[i];
        const nervus::Section& samples = container.section(std::to_string(i));
        const Kept kept{static_cast<std::int64_t>(i), facts.rate, &samples};
        const auto leaveOut = [&](const std::string& why) {
            report(Severity::warning, nameOf(kept) + " is left out: " + why);
        };
        // Of one that is cut, samples were there once: the recording ends before them.
        if (samples.length < sampleBytes && !samples.cut) {
            leaveOut("there are no samples of it");
            continue;
        }
        if (!(facts.rate > 0.0) || !std::isfinite(facts.rate)) {
            leaveOut("its sampling rate is " + shortestText(facts.rate) + " Hz");
            continue;
        }
        if (!std::isfinite(facts.resolution)) {
            leaveOut("it has " + shortestText(facts.resolution) + " uV per bit");
            continue;
        }
        if (facts.offset != 0.0)
            report(Severity::warning, nameOf(kept) + " has an offset of " +
                                          shortestText(facts.offset) +
                                          ", whose meaning is not known: it is not applied");
        FlatTrack track{sampleBytes, 1, facts.rate, {}, {}};
        for (const nervus::Section::Piece& piece : samples.pieces) {
            if (piece.length % sampleBytes != 0 && &piece != &samples.pieces.back())
                return refuse(2, "a piece of " + nameOf(kept) + " (offset " +
                                     std::to_string(piece.offset) + ") has " +
                                     std::to_string(piece.length) +
                                     " bytes, which are no whole samples");
            track.pieces.push_back({piece.offset, piece.length / sampleBytes});
        }
        FlatChannel channel;
        channel.track = static_cast<int>(recording.tracks.size());
        channel.integer = storedSample;
        channel.grid1 = std::move(facts.label);
        channel.grid2 = equalNoCase(facts.reference, "REF") ? "Ref" : std::move(facts.reference);
        if (channel.grid1.empty())
            channel.grid1 = "Ch" + std::to_string(i + 1);
        if (channel.grid2.empty())
            channel.name = channel.grid1;
        calibrateMicrovolts(channel, facts.resolution);
        recording.rate = std::max(recording.rate, facts.rate);
        recording.tracks.push_back(std::move(track));
        recording.channels.push_back(std::move(channel));
        m_state->kept.push_back(kept);
    }
    return !recording.channels.empty() ||
           refuse(2, "of " + std::to_string(table.channels.size()) + " channels none can be shown");
}

// Segments hold the product of duration and rate. The recording ends where the first channel does:
// the last piece of a file that was not closed is often shorter than announced.
bool NervusReader::countSamples(FlatRecording& recording) {
    auto& segments = recording.segments;
    if (segments.size() * m_state->kept.size() > mostSegmentStarts)
        return refuse(2, std::to_string(segments.size()) + " segments of " +
                             std::to_string(m_state->kept.size()) +
                             " channels are more than can be read");
    bool whole = true;
    double announced = 0.0;
    for (std::size_t s = 0; s < segments.size(); ++s) {
        const double duration = m_state->durations[s];
        announced += duration;
        segments[s].count = saturate<std::int64_t>(samplesOf(duration, recording.rate));
        for (Kept& channel : m_state->kept) {
            const double exact = duration * channel.rate;
            whole = whole && std::abs(exact - std::round(exact)) <= nearlyWhole;
            channel.counts.push_back(saturate<std::int64_t>(samplesOf(duration, channel.rate)));
        }
    }
    if (!whole && segments.size() > 1)
        report(Severity::warning, "its segments are no whole numbers of samples of all channels: "
                                  "behind the first, a channel may be shown a sample off");
    const Kept* shortest = nullptr;
    for (std::size_t c = 0; c < m_state->kept.size(); ++c) {
        const Kept& channel = m_state->kept[c];
        std::int64_t left = recording.tracks[c].count(), start = 0;
        std::vector<std::int64_t> starts;
        for (std::size_t s = 0; s < segments.size(); ++s) {
            starts.push_back(start);
            start += channel.counts[s];
            if (channel.counts[s] <= left) {
                left -= channel.counts[s];
                continue;
            }
            const double shown =
                std::floor(static_cast<double>(left) * recording.rate / channel.rate);
            const auto most = saturate<std::int64_t>(shown);
            if (most < segments[s].count || s + 1 < segments.size())
                shortest = &channel;
            segments[s].count = std::min(segments[s].count, most);
            segments.resize(s + 1);
            left = 0;
        }
        const std::int64_t more =
            recording.tracks[c].count() -
            std::accumulate(channel.counts.begin(), channel.counts.end(), std::int64_t{0});
        if (static_cast<double>(more) > channel.rate)
            report(Severity::warning, nameOf(channel) + " holds " + std::to_string(more) +
                                          " samples more than its segments last: they are not "
                                          "shown");
        if (channel.rate < recording.rate)
            recording.tracks[c].segmentStarts = std::move(starts);
    }
    double shown = 0.0;
    for (const FlatSegment& segment : segments)
        shown += static_cast<double>(segment.count) / recording.rate;
    if (shortest)
        report(Severity::warning, "it is shown to " + shortestText(shown) + " s of the announced " +
                                      shortestText(announced) + " s: " + nameOf(*shortest) +
                                      " has no more samples");
    for (FlatTrack& track : recording.tracks)
        if (!track.segmentStarts.empty())
            track.segmentStarts.resize(segments.size());
    return true;
}

void NervusReader::listEvents(std::vector<FlatEvent>& events) {
    const FlatRecording& made = recording();
    ClockEvents dated(events);
    std::size_t dateless = 0;
    const auto take = [&](const nervus::Happening& happening) {
        const CalendarTime moment = nervus::momentOf(happening.days);
        if (made.start.hasDate() && moment.hasDate() && std::isfinite(happening.extraSeconds))
            dated.add(sampleAt(moment.secondsFromDayOf(made.start) + happening.extraSeconds),
                      {0, happening.text, {}, happening.duration});
        else
            ++dateless;
        return events.size() < mostEvents;
    };
    const std::string ended = nervus::forEachEvent(made.samples, m_state->container, take);
    const std::string number = "(" + std::to_string(dateless) + ")";
    for (const std::string& lost :
         {ended, dated.outside(),
          dateless == 0 ? std::string()
          : made.start.hasDate()
              ? "events without a date are left out " + number
              : "its first segment has no date: all its events " + number + " are left out"})
        if (!lost.empty())
            logMessage(logWarning, filePath() + ": " + lost);
}

} // namespace kvsig
