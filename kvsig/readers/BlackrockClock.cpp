#include "kvsig/readers/BlackrockClock.h"

#include "kvsig/util/Saturate.h"

#include <algorithm>

namespace kvsig::blackrock {
namespace {

constexpr double secondsPerYear = 31557600.0;

} // namespace

std::vector<ClockPart> clockParts(const std::vector<Run>& runs, double ticks, double rate,
                                  double jitter) {
    std::vector<ClockPart> parts;
    const auto most = saturate<std::uint64_t>(jitter * ticks);
    std::uint64_t first = 0; // stamp of the part
    std::uint64_t latest = 0;
    for (const Run& run : runs) {
        const double begin = static_cast<double>(run.stamp) / ticks;
        if (parts.empty() || run.stamp < first || latest - std::min(run.stamp, latest) > most) {
            parts.push_back({run.offset, 0, begin, begin, 0.0});
            first = run.stamp;
            latest = 0;
        }
        ClockPart& part = parts.back();
        const double lastBlock = static_cast<double>(run.frames - run.blocks + 1) / rate;
        part.end = std::max(part.end, static_cast<double>(run.lastStamp) / ticks + lastBlock);
        ++part.runs;
        latest = std::max(latest, run.lastStamp);
    }
    if (parts.empty())
        return {ClockPart()};
    ClockPart& last = parts.back();
    last.shift = last.begin > secondsPerYear ? -last.begin : 0.0;
    for (std::size_t i = parts.size() - 1; i-- > 0;)
        parts[i].shift = parts[i + 1].begin + parts[i + 1].shift - parts[i].end;
    return parts;
}

std::vector<double> timesOf(double seconds, const std::vector<ClockPart>& parts, double slack) {
    if (parts.size() == 1)
        return {seconds + parts.front().shift};
    std::vector<double> times;
    const std::size_t first = parts.size() - std::min(parts.size(), mostPartsOfEvents);
    for (std::size_t i = parts.size(); i-- > first;)
        if (seconds >= parts[i].begin - slack && seconds <= parts[i].end + slack)
            times.push_back(seconds + parts[i].shift);
    return times;
}

} // namespace kvsig::blackrock
