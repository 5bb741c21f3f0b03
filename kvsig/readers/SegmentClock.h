#pragma once

#include "kvsig/readers/FlatRecording.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kvsig {

/// Finds the sample of a clock time, in whatever order segments stand in the file: the segment that
/// holds the time has it, of several the one that began last. In a pause it is the first sample of
/// the one that begins next; where that one stands before all in the file that began by then the
/// clock was set back, and what lies between is no pause but outside. Empty segments hold nothing.
class SegmentClock {
  public:
    struct Place {
        std::size_t segment = 0;
        std::int64_t sample = 0; ///< in the segment; its count at its very end
    };

    SegmentClock() = default;
    /// Starts must be finite, and the rate above 0.
    explicit SegmentClock(const FlatRecording& recording);

    /// Of the recording that it was made of. Nothing outside by half a sample or more.
    [[nodiscard]] std::optional<Place> placeOf(const FlatRecording& recording, double clock) const;

  private:
    struct Stretch {
        double from = 0.0; ///< to the next one's, or to the segment's end
        std::size_t segment = 0;
        std::size_t earliest = 0; ///< in the file, of the segments that began by then
    };
    std::vector<Stretch> m_stretches; ///< ascending
};

} // namespace kvsig
