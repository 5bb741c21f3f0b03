#pragma once

#include "kvsig/readers/BlackrockBlocks.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kvsig::blackrock {

/// Of more parts than these the earlier ones are not looked at for events.
inline constexpr std::size_t mostPartsOfEvents = 64;

/// Runs between which the recorder's clock did not start anew. Times are in seconds.
struct ClockPart {
    std::int64_t offset = 0; ///< of its first block in the file
    std::size_t runs = 0;
    double begin = 0.0; ///< by the recorder's clock
    double end = 0.0;   ///< the same, of the run that ends last
    double shift = 0.0; ///< from the recorder's clock to the time behind the recording's start
};

/// Of two linked amplifiers the clock starts anew when they have found each other. The last part
/// keeps its clock, unless that counts from more than a year ago; what was recorded before is
/// placed directly before it. Nothing is left out or sorted. Stamps may be lower by `jitter`
/// seconds than an earlier one, but not lower than the first, without a new start. Never empty.
[[nodiscard]] std::vector<ClockPart> clockParts(const std::vector<Run>& runs, double ticks,
                                                double rate, double jitter);

/// The times behind the recording's start at which the clock showed `seconds`, the last one first;
/// of a clock that did not start anew always one. A part begins and ends `slack` seconds wider.
[[nodiscard]] std::vector<double> timesOf(double seconds, const std::vector<ClockPart>& parts,
                                          double slack);

} // namespace kvsig::blackrock
