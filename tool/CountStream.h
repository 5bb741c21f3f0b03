#pragma once

#include "tool/LongWork.h"
#include "tool/Selection.h"

#include <cstdint>
#include <vector>

namespace kvsig::tool {

/// Delivers the file's own integers of a selection's recorded channels window by window, in order;
/// zeros where a pair's second recording has ended before the first, held ones of its slower
/// member.
class CountStream {
  public:
    explicit CountStream(const Selection& selection);

    /// Reads the next window; false at the end and when the user has interrupted the work.
    bool next(LongWork& work);

    [[nodiscard]] SampleRange window() const { return m_window; }
    /// By row, the samples of the current window.
    [[nodiscard]] const std::vector<std::vector<std::int32_t>>& columns() const {
        return m_columns;
    }

  private:
    const Selection* m_selection;
    SampleRange m_window;
    long m_windowLength;
    std::vector<std::vector<std::int32_t>> m_columns;
};

} // namespace kvsig::tool
