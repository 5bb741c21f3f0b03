#include "kvsig/readers/BlackrockStamps.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>

namespace kvsig::blackrock {
namespace {

// Of a long block only the first sample has a stamp: the last one's is worked out. What a drift may
// have made of that is `slack` ticks.
struct LastSample {
    std::uint64_t stamp = 0;
    std::uint64_t slack = 0;
};

LastSample lastSampleOf(const Run& run, const FlatRecording& recording, double ticks) {
    const double seconds = static_cast<double>(run.frames - run.blocks) / recording.rate;
    const double drift = recording.clockTolerance(seconds) - recording.clockTolerance(0.0);
    const std::uint64_t left = std::numeric_limits<std::uint64_t>::max() - run.lastStamp;
    return {run.lastStamp + std::min(left, saturate<std::uint64_t>(seconds * ticks)),
            saturate<std::uint64_t>(drift * ticks)};
}

/// Samples that follow each other, and the seconds that their stamps tell of.
struct Stamped {
    std::int64_t first = 0;
    std::int64_t samples = 0;
    double seconds = 0.0;
};

std::optional<Stamped> findOtherLength(const std::vector<Run>& runs,
                                       const std::vector<ClockPart>& parts,
                                       const FlatRecording& recording, double ticks) {
    // Above 0 where stamps are too close.
    const auto excess = [&recording](const Stamped& span) {
        const double due = static_cast<double>(span.samples) / recording.rate;
        const double shorter = due - span.seconds;
        return std::abs(shorter) > recording.clockTolerance(due) ? shorter : 0.0;
    };
    std::int64_t sample = 0;
    std::size_t i = 0;
    for (const ClockPart& part : parts) {
        Stamped whole{sample, 0, part.end - part.begin};
        for (const std::size_t end = i + part.runs; i < end; ++i) {
            const Run& run = runs[i];
            const Stamped own{sample, run.frames,
                              static_cast<double>(run.lastStamp - run.stamp) / ticks +
                                  static_cast<double>(run.frames - run.blocks + 1) /
                                      recording.rate};
            if (excess(own) != 0.0)
                return own;
            sample += run.frames;
        }
        whole.samples = sample - whole.first;
        if (excess(whole) > 0.0) // pauses make it longer
            return whole;
    }
    return std::nullopt;
}

} // namespace

// Half a step before the first sample belongs to it, and half a step behind the end, where the next
// sample is due, to that.
StampedRuns::StampedRuns(const std::vector<Run>& runs, const FlatRecording& recording, double ticks)
    : m_halfStep(ticks / recording.rate / 2.0) {
    m_stamps.rate = ticks;
    m_stamps.segments.reserve(runs.size());
    m_stretches.reserve(runs.size());
    std::int64_t first = 0;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const double length = static_cast<double>(runs[i].lastStamp - runs[i].stamp);
        m_stretches.push_back({first, runs[i].frames,
                               runs[i].frames > 1 ? length / static_cast<double>(runs[i].frames - 1)
                                                  : 2.0 * m_halfStep});
        m_stamps.segments.push_back({saturate<std::int64_t>(length + 4.0 * m_halfStep),
                                     recording.segments[i].start - m_halfStep / ticks});
        first += runs[i].frames;
    }
    m_clock = SegmentClock(m_stamps);
}

std::optional<StampedRuns::Place> StampedRuns::placeOf(double clock) const {
    const auto place = m_clock.placeOf(m_stamps, clock);
    if (!place)
        return std::nullopt;
    const Stretch& run = m_stretches[place->segment];
    const double sample = (static_cast<double>(place->sample) - m_halfStep) / run.step;
    return Place{run.first + std::clamp<std::int64_t>(saturate<std::int64_t>(std::round(sample)), 0,
                                                      run.frames),
                 clock < m_stamps.segments[place->segment].start};
}

// Stamps may be a little lower than those before them: what is missing counts from the latest. The
// end of what was recorded is that of the shown clock, which takes no time from a run that was set
// back.
std::string missingSamples(const std::vector<Run>& runs, const std::vector<ClockPart>& parts,
                           const FlatRecording& recording, double ticks,
                           std::uint64_t longestStep) {
    std::string first;
    std::size_t more = 0;
    std::int64_t sample = 0;
    double latest = -std::numeric_limits<double>::infinity(); // start
    double shown = 0.0, due = 0.0, sinceAnchor = 0.0;         // the ends; seconds
    std::size_t i = 0;
    for (const ClockPart& part : parts) {
        std::optional<LastSample> last;
        for (std::size_t end = i + part.runs; i < end; ++i) {
            const Run& run = runs[i];
            const double start = recording.segments[i].start;
            const bool isAnchor = start >= latest;
            const bool isTold =
                isAnchor && i > 0 && start - due > recording.clockTolerance(sinceAnchor);
            const std::uint64_t step =
                last && run.stamp > last->stamp ? run.stamp - last->stamp : 0;
            if (step > longestStep && step - longestStep > last->slack && !isTold) {
                const double gap = static_cast<double>(step) / ticks - 1.0 / recording.rate;
                if (!first.empty())
                    ++more;
                else
                    first = "by its time stamps " + fixedText(gap * recording.rate, 0) +
                            " samples (" + shortestText(std::round(gap * 1e6) / 1e6) +
                            " s) are missing before sample " + std::to_string(sample);
            }
            const double seconds = static_cast<double>(run.frames) / recording.rate;
            shown = isAnchor ? start + seconds : shown + seconds;
            sinceAnchor = isAnchor ? seconds : sinceAnchor + seconds;
            due = i > 0 ? std::max(due, shown) : shown;
            latest = std::max(latest, start);
            const LastSample own = lastSampleOf(run, recording, ticks);
            // Where one was worked out, a stamp that a drift may have made lower says more.
            if (!last || own.stamp > last->stamp || last->stamp - own.stamp <= last->slack)
                last = own;
            sample += run.frames;
        }
    }
    return more > 0 ? first + ", and more at others (" + std::to_string(more) + ")" : first;
}

std::string otherLength(const std::vector<Run>& runs, const std::vector<ClockPart>& parts,
                        const FlatRecording& recording, double ticks) {
    const auto span = findOtherLength(runs, parts, recording, ticks);
    return span ? "its time stamps tell of " + generalText(span->seconds, 4) + " s for the " +
                      std::to_string(span->samples) + " samples from " +
                      std::to_string(span->first) + " on, which last " +
                      generalText(static_cast<double>(span->samples) / recording.rate, 4) +
                      " s at " + shortestText(recording.rate) +
                      " Hz: that rate or the clock there is wrong"
                : std::string();
}

std::string missingSingles(const std::vector<Run>& runs) {
    const std::int64_t steps =
        std::accumulate(runs.begin(), runs.end(), std::int64_t{0},
                        [](std::int64_t sum, const Run& run) { return sum + run.longSteps; });
    return steps == 0
               ? std::string()
               : "steps of its time stamps of 1.5 to 2 times the usual one, at each of which "
                 "a sample may be missing: " +
                     std::to_string(steps);
}

} // namespace kvsig::blackrock
