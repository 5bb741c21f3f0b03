#include "kvsig/kernel/TimeBase.h"

#include <algorithm>
#include <cmath>

namespace kvsig {
namespace {

constexpr double secondsPerDay = 86400.0;
constexpr std::size_t usualAnchors = 10;

// A clock that runs backwards has passed midnight. Gaps of many days are taken in one step, so that
// a hostile pair of anchors costs no more than an honest one; where a day is below the resolution
// of the time, there is nothing left to add.
double movedPast(double time, double last) {
    if (time >= last)
        return time;
    constexpr double manyDays = 30.0;
    const double days = std::floor((last - time) / secondsPerDay);
    if (!std::isfinite(days))
        return last;
    if (days > manyDays)
        time += days * secondsPerDay;
    while (time < last) {
        const double next = time + secondsPerDay;
        if (next <= time)
            return last;
        time = next;
    }
    return time;
}

// The first anchor but for anchor 0 that is not `reached`: samples and times ascend.
template <typename Reached>
std::size_t firstBehind(const std::vector<SampleTime>& anchors, Reached reached) {
    return static_cast<std::size_t>(
        std::partition_point(anchors.begin() + 1, anchors.end(), reached) - anchors.begin());
}

} // namespace

TimeBase::TimeBase() { m_anchors.reserve(usualAnchors); }

void TimeBase::add(SampleTime& anchor) {
    if (!std::isfinite(anchor.time))
        return;
    if (!m_anchors.empty()) {
        const SampleTime& last = m_anchors.back();
        if (anchor.sample <= last.sample)
            return;
        anchor.time = movedPast(anchor.time, last.time);
    }
    m_anchors.push_back(anchor);
}

double TimeBase::clockTime(double elapsed, double samplingRate) const {
    if (m_anchors.empty() || !(samplingRate > 0))
        return elapsed;
    const double sample = elapsed * samplingRate;
    const std::size_t next =
        firstBehind(m_anchors, [&](const SampleTime& a) { return a.sample <= sample; });
    const SampleTime& anchor = m_anchors[next - 1];
    return (sample - anchor.sample) / samplingRate + anchor.time;
}

double TimeBase::elapsedTime(double clock, double samplingRate) const {
    if (m_anchors.empty() || !(samplingRate > 0))
        return clock;
    const std::size_t next =
        firstBehind(m_anchors, [&](const SampleTime& a) { return a.time <= clock; });
    const SampleTime& anchor = m_anchors[next - 1];
    const double elapsed = (clock - anchor.time) + anchor.sample / samplingRate;
    if (next < m_anchors.size()) {
        const double nextStart = m_anchors[next].sample / samplingRate;
        if (elapsed > nextStart)
            return nextStart;
    }
    return elapsed;
}

} // namespace kvsig
