#pragma once

#include "kvsig/readers/FlatRecording.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kvsig {

/// Finds the sample of a clock time, in whatever order segments stand in the file: the segment that
/// holds the time has it, of several the one that began last; in a pause it is the first sample of
/// the one that begins next. Empty segments hold nothing.
class SegmentClock {
  public:
    struct Place {
        std::size_t segment = 0;
        std::int64_t sample = 0; ///< in the segment; its count at its very end
    };

    SegmentClock() = default;
    /// Starts must be finite, and the rate above 0.
    explicit SegmentClock(const FlatRecording& recording);

    /// Of the recording that it was made of. Nothing when the time lies half a sample or more
    /// before the first start or behind the last end.
    [[nodiscard]] std::optional<Place> placeOf(const FlatRecording& recording, double clock) const;

  private:
    struct Stretch {
        double from = 0.0; ///< to the next one's, or to the segment's end
        std::size_t segment = 0;
    };
    std::vector<Stretch> m_stretches; ///< ascending
};

} // namespace kvsig
