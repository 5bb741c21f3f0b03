#pragma once

#include <cstdint>
#include <vector>

namespace kvsig::tool {

/// A point of a drawn trace.
struct TracePoint {
    float position; ///< 0 at the first sample, 1 at the end of the last
    float value;
};

/// What became of the samples of one column of the picture.
struct TraceColumn {
    float position; ///< of its middle
    float low, high;
    bool lowFirst;
    float mean, deviation; ///< deviation: the standard deviation
};

/// Turns any number of samples into a trace that fits a picture: while there are few per column all
/// of them are kept, else what a column holds is summed up. Samples that are not finite are left
/// out.
class TraceReducer {
  public:
    TraceReducer(std::int64_t samples, int columns);

    void add(const float* values, std::int64_t count);
    /// Completes the last column; to be called once, after the last add().
    void finish();

    /// The trace as a line: all samples, or the extremes of each column in their order.
    [[nodiscard]] std::vector<TracePoint> line() const;
    /// Empty while all samples are kept.
    [[nodiscard]] const std::vector<TraceColumn>& columns() const { return m_columns; }
    /// The median of the samples, or of the columns' means: an artefact does not move it.
    [[nodiscard]] double centre() const;
    [[nodiscard]] float lowest() const { return m_lowest; }
    [[nodiscard]] float highest() const { return m_highest; }
    [[nodiscard]] bool empty() const { return m_points.empty() && m_columns.empty(); }

  private:
    // The column that is being filled. Sums are taken about its first value: a large offset would
    // eat up the deviation's digits.
    struct Filling {
        std::int64_t number = -1;
        std::int64_t lowAt = 0, highAt = 0;
        std::int64_t count = 0;
        double first = 0.0, low = 0.0, high = 0.0;
        double sum = 0.0, squares = 0.0;

        void take(std::int64_t index, double value);
    };

    [[nodiscard]] float positionOf(double sample) const;
    void closeColumn();

    std::int64_t m_samples;
    std::int64_t m_perColumn; ///< 1: every sample is kept
    std::int64_t m_next = 0;
    float m_lowest = 0.0F, m_highest = 0.0F;
    Filling m_filling;
    std::vector<TracePoint> m_points;
    std::vector<TraceColumn> m_columns;
};

} // namespace kvsig::tool
