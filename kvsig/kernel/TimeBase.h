#pragma once

#include "kvsig/kernel/SampleTime.h"

#include <vector>

namespace kvsig {

/// The anchors of a recording, in strictly increasing sample order, and the conversions between
/// elapsed time (seconds from sample 0) and clock time (seconds since midnight) that they define.
class TimeBase {
  public:
    TimeBase();

    /// Appends an anchor. One whose sample does not exceed the last one's, or whose time is not
    /// finite, is ignored. A time before the last anchor's is moved on by whole days (midnight
    /// rollover), in the caller's record too.
    void add(SampleTime& anchor);
    void clear() { m_anchors.clear(); }

    [[nodiscard]] const std::vector<SampleTime>& anchors() const { return m_anchors; }

    /// Without anchors, or with a rate not greater than 0, both return their argument.
    [[nodiscard]] double clockTime(double elapsed, double samplingRate) const;
    /// A clock time inside a recording gap gives the start of the following segment.
    [[nodiscard]] double elapsedTime(double clock, double samplingRate) const;

  private:
    std::vector<SampleTime> m_anchors;
};

} // namespace kvsig
