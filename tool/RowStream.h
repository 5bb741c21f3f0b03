#pragma once

#include "tool/LongWork.h"
#include "tool/Rows.h"

#include <vector>

namespace kvsig::tool {

/// Samples that are worked on at a time: as many as pages of the reader's cache hold, so that no
/// row reads a page again that another row has read, and about a million values at most.
[[nodiscard]] long windowLengthFor(const std::vector<Row>& rows, SampleRange range);

/// Tells a piece of work how much of a range is done with a window of it.
[[nodiscard]] bool goOn(LongWork& work, SampleRange window, SampleRange range);

/// Delivers the values of rows window by window, in order, with the filters' state carried on from
/// one window to the next, so that the result does not depend on where windows end. The filters run
/// in on the samples before the range, at the recording's start on its first sample. Recorded
/// channels without filters are computed from the file's counts and rounded once. Holds at most
/// about four MiB of samples.
class RowStream {
  public:
    RowStream(const std::vector<Row>& rows, SampleRange range);

    /// Computes the next window; false at the end.
    bool next();

    /// The samples of the current window, inclusive, and a row's values for them: physical units,
    /// or with `kernelValues` the kernel's own numbers at gain 1.
    [[nodiscard]] SampleRange window() const { return m_window; }
    [[nodiscard]] const float* values(std::size_t row) const {
        return m_values.data() + row * m_windowLength;
    }

    /// To be called before the first next().
    void setKernelValues(bool kernelValues) { m_kernelValues = kernelValues; }

  private:
    [[nodiscard]] bool isFromCounts(const Row& row) const;
    void fillFromCounts(const Row& row, float* out);
    void fillFromSource(const Row& row, float* out);
    void runIn(const Row& row, double gain, float* work);

    const std::vector<Row>* m_rows;
    SampleRange m_range;
    SampleRange m_window;
    std::size_t m_windowLength;
    bool m_kernelValues = false;
    bool m_started = false;
    std::vector<float> m_values;
};

} // namespace kvsig::tool
