#include "tool/plot/TraceReducer.h"

#include <algorithm>
#include <cmath>

namespace kvsig::tool {
namespace {

constexpr int keptPerColumn = 4;

} // namespace

TraceReducer::TraceReducer(std::int64_t samples, int columns)
    : m_samples(std::max<std::int64_t>(samples, 1)),
      m_perColumn(samples > std::int64_t{columns} * keptPerColumn
                      ? (samples + columns - 1) / std::max(columns, 1)
                      : 1) {}

void TraceReducer::add(const float* values, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i, ++m_next) {
        const float value = values[i];
        if (!std::isfinite(value))
            continue;
        m_lowest = m_finite == 0 ? value : std::min(m_lowest, value);
        m_highest = m_finite == 0 ? value : std::max(m_highest, value);
        m_sum += value;
        ++m_finite;
        if (m_perColumn == 1) {
            addPoint(m_next, value);
            continue;
        }
        if (m_next / m_perColumn != m_column) {
            closeColumn();
            m_column = m_next / m_perColumn;
            m_low = m_high = value;
            m_lowAt = m_highAt = m_next;
        } else if (value < m_low) {
            m_low = value;
            m_lowAt = m_next;
        } else if (value > m_high) {
            m_high = value;
            m_highAt = m_next;
        }
    }
}

void TraceReducer::finish() { closeColumn(); }

void TraceReducer::closeColumn() {
    if (m_column < 0)
        return;
    const bool lowFirst = m_lowAt <= m_highAt;
    addPoint(lowFirst ? m_lowAt : m_highAt, lowFirst ? m_low : m_high);
    if (m_lowAt != m_highAt)
        addPoint(lowFirst ? m_highAt : m_lowAt, lowFirst ? m_high : m_low);
    m_column = -1;
}

void TraceReducer::addPoint(std::int64_t index, float value) {
    const double position = static_cast<double>(index) / static_cast<double>(m_samples);
    m_points.push_back({static_cast<float>(position), value});
}

double TraceReducer::mean() const {
    return m_finite > 0 ? m_sum / static_cast<double>(m_finite) : 0.0;
}

} // namespace kvsig::tool
