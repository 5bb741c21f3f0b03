#include "kvsig/readers/BlackrockStamps.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace kvsig::blackrock {
namespace {

double ticksBetween(std::uint64_t first, std::uint64_t last) {
    return static_cast<double>(last - first);
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
        const double length = ticksBetween(runs[i].stamp, runs[i].lastStamp);
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

std::string missingSamples(const std::vector<Run>& runs, const FlatRecording& recording,
                           double ticks, std::uint64_t longestStep) {
    std::string first;
    std::size_t more = 0;
    std::int64_t sample = 0;
    double due = 0.0; // clock time at which what was recorded ends by its rate
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const double start = recording.segments[i].start;
        const double seconds = static_cast<double>(runs[i].frames) / recording.rate;
        if (i > 0 && runs[i].stamp > runs[i - 1].lastStamp &&
            runs[i].stamp - runs[i - 1].lastStamp > longestStep &&
            start - due <= recording.clockTolerance(static_cast<double>(runs[i - 1].frames) /
                                                    recording.rate)) {
            const double gap =
                ticksBetween(runs[i - 1].lastStamp, runs[i].stamp) / ticks - 1.0 / recording.rate;
            if (!first.empty())
                ++more;
            else
                first = "by its time stamps " + fixedText(gap * recording.rate, 0) + " samples (" +
                        shortestText(std::round(gap * 1e6) / 1e6) +
                        " s) are missing before sample " + std::to_string(sample);
        }
        due = i > 0 ? std::max(due, start + seconds) : start + seconds;
        sample += runs[i].frames;
    }
    return more > 0 ? first + ", and others at " + std::to_string(more) + " more places" : first;
}

} // namespace kvsig::blackrock
