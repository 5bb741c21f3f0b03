#include "kvsig/readers/SegmentClock.h"

#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace kvsig {

SegmentClock::SegmentClock(const FlatRecording& recording) {
    const auto& segments = recording.segments;
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < segments.size(); ++i)
        if (segments[i].count > 0)
            order.push_back(i);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return segments[a].start < segments[b].start;
    });
    const auto endOf = [&](std::size_t i) {
        return segments[i].start + static_cast<double>(segments[i].count) / recording.rate;
    };
    const auto add = [this](double from, std::size_t segment) {
        const std::size_t before = m_stretches.empty() ? segment : m_stretches.back().earliest;
        m_stretches.push_back({from, segment, std::min(before, segment)});
    };
    std::vector<std::size_t> begun; // and not ended, in the order of their starts
    // Where one ends, the one that it began in goes on.
    const auto endThoseBefore = [&](double time) {
        while (!begun.empty() && endOf(begun.back()) <= time) {
            const double end = endOf(begun.back());
            while (!begun.empty() && endOf(begun.back()) <= end)
                begun.pop_back();
            if (!begun.empty())
                add(end, begun.back());
        }
    };
    for (const std::size_t i : order) {
        endThoseBefore(segments[i].start);
        add(segments[i].start, i);
        begun.push_back(i);
    }
    endThoseBefore(std::numeric_limits<double>::infinity());
}

std::optional<SegmentClock::Place> SegmentClock::placeOf(const FlatRecording& recording,
                                                         double clock) const {
    if (std::isnan(clock))
        return std::nullopt;
    const auto sampleIn = [&](std::size_t segment) {
        return saturate<std::int64_t>(
            std::round((clock - recording.segments[segment].start) * recording.rate));
    };
    const auto next =
        std::upper_bound(m_stretches.begin(), m_stretches.end(), clock,
                         [](double time, const Stretch& stretch) { return time < stretch.from; });
    if (next != m_stretches.begin())
        if (const std::size_t holder = std::prev(next)->segment;
            sampleIn(holder) <= recording.segments[holder].count)
            return Place{holder, sampleIn(holder)};
    if (next == m_stretches.end())
        return std::nullopt;
    // A clock is rounded: up to half a sample before the start it is the first one.
    const bool isPause = next != m_stretches.begin() && std::prev(next)->earliest < next->segment;
    return isPause || sampleIn(next->segment) >= 0 ? std::optional(Place{next->segment, 0})
                                                   : std::nullopt;
}

} // namespace kvsig
