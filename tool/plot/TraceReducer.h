#pragma once

#include <cstdint>
#include <vector>

namespace kvsig::tool {

/// A point of a drawn trace.
struct TracePoint {
    float position; ///< 0 at the first sample, 1 at the end of the last
    float value;
};

/// Turns any number of samples into a line that fits a picture: while there are few per column all
/// of them are kept, else the smallest and the largest of each column, in their order. Samples that
/// are not finite are left out.
class TraceReducer {
  public:
    TraceReducer(std::int64_t samples, int columns);

    void add(const float* values, std::int64_t count);
    /// Completes the last column; to be called once, after the last add().
    void finish();

    [[nodiscard]] const std::vector<TracePoint>& points() const { return m_points; }
    [[nodiscard]] double mean() const;
    [[nodiscard]] float lowest() const { return m_lowest; }
    [[nodiscard]] float highest() const { return m_highest; }
    [[nodiscard]] bool empty() const { return m_finite == 0; }

  private:
    void addPoint(std::int64_t index, float value);
    void closeColumn();

    std::int64_t m_samples;
    std::int64_t m_perColumn; ///< 1: every sample is kept
    std::int64_t m_next = 0;
    std::int64_t m_column = -1;
    std::int64_t m_lowAt = 0, m_highAt = 0;
    float m_low = 0.0F, m_high = 0.0F;
    float m_lowest = 0.0F, m_highest = 0.0F;
    double m_sum = 0.0;
    std::int64_t m_finite = 0;
    std::vector<TracePoint> m_points;
};

} // namespace kvsig::tool
