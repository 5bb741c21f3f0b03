#pragma once

#include "kvsig/readers/BlackrockBlocks.h"
#include "kvsig/readers/BlackrockClock.h"
#include "kvsig/readers/FlatRecording.h"
#include "kvsig/readers/SegmentClock.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvsig::blackrock {

/// Runs of samples that a network's clock stamped one by one. It drifts against the rate, so a time
/// is looked for between the first and the last stamp of a run, not counted from the first alone.
class StampedRuns {
  public:
    struct Place {
        std::int64_t sample = 0;
        bool isPause = false; ///< the time lies in a pause before that sample
    };

    /// The segments of `recording` are those runs. Stamps count `ticks` a second.
    StampedRuns(const std::vector<Run>& runs, const FlatRecording& recording, double ticks);

    /// The sample at a clock time (seconds since midnight of the first day). Pauses and bounds as
    /// in SegmentClock.
    [[nodiscard]] std::optional<Place> placeOf(double clock) const;

  private:
    struct Stretch {
        std::int64_t first = 0; ///< sample
        std::int64_t frames = 0;
        double step = 0.0; ///< ticks from one sample to the next
    };

    double m_halfStep = 0.0; ///< ticks at the nominal rate
    FlatRecording m_stamps;  ///< the runs in ticks instead of samples
    SegmentClock m_clock;
    std::vector<Stretch> m_stretches;
};

/// What the stamps of such runs leave out and time anchors do not show, since a drift might explain
/// it: the first place and how many more, in words. Empty when there is nothing.
[[nodiscard]] std::string missingSamples(const std::vector<Run>& runs,
                                         const std::vector<ClockPart>& parts,
                                         const FlatRecording& recording, double ticks,
                                         std::uint64_t longestStep);

/// Where the stamps tell of another length than the rate, by more than a drift explains: the first
/// run, or a part of the clock whose runs overlap, in words. Empty when nowhere.
[[nodiscard]] std::string otherLength(const std::vector<Run>& runs,
                                      const std::vector<ClockPart>& parts,
                                      const FlatRecording& recording, double ticks);

/// What single samples the stamps inside such runs leave out, in words. Empty when there are none.
[[nodiscard]] std::string missingSingles(const std::vector<Run>& runs);

} // namespace kvsig::blackrock
