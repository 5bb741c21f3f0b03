#include "tool/plot/TraceReducer.h"

#include "tool/plot/PageLayout.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kvsig::tool {
namespace {

constexpr int keptPerColumn = 4;

} // namespace

TraceReducer::TraceReducer(std::int64_t samples, int columns)
    : m_samples(std::max<std::int64_t>(samples, 1)),
      m_perColumn(samples > std::int64_t{columns} * keptPerColumn
                      ? (samples + columns - 1) / std::max(columns, 1)
                      : 1) {}

void TraceReducer::Filling::take(std::int64_t index, double value) {
    if (count == 0) {
        first = low = high = value;
        lowAt = highAt = index;
    } else if (value < low) {
        low = value;
        lowAt = index;
    } else if (value > high) {
        high = value;
        highAt = index;
    }
    ++count;
    sum += value - first;
    squares += (value - first) * (value - first);
}

void TraceReducer::add(const float* values, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i, ++m_next) {
        const float value = values[i];
        if (!std::isfinite(value))
            continue;
        const bool first = empty() && m_filling.count == 0;
        m_lowest = first ? value : std::min(m_lowest, value);
        m_highest = first ? value : std::max(m_highest, value);
        if (m_perColumn == 1) {
            m_points.push_back({positionOf(static_cast<double>(m_next)), value});
            continue;
        }
        if (m_next / m_perColumn != m_filling.number) {
            closeColumn();
            m_filling.number = m_next / m_perColumn;
        }
        m_filling.take(m_next, value);
    }
}

void TraceReducer::finish() { closeColumn(); }

void TraceReducer::closeColumn() {
    const Filling& column = m_filling;
    if (column.count > 0) {
        const auto count = static_cast<double>(column.count);
        const double shift = column.sum / count;
        const double variance = std::max(column.squares / count - shift * shift, 0.0);
        const double middle =
            (static_cast<double>(column.number) + 0.5) * static_cast<double>(m_perColumn);
        m_columns.push_back({positionOf(middle), static_cast<float>(column.low),
                             static_cast<float>(column.high), column.lowAt <= column.highAt,
                             static_cast<float>(column.first + shift),
                             static_cast<float>(std::sqrt(variance))});
    }
    m_filling = Filling();
}

std::vector<TracePoint> TraceReducer::line() const {
    if (m_columns.empty())
        return m_points;
    const float quarter = 0.25F * positionOf(static_cast<double>(m_perColumn));
    std::vector<TracePoint> points;
    for (const TraceColumn& column : m_columns) {
        points.push_back({column.position - quarter, column.lowFirst ? column.low : column.high});
        points.push_back({column.position + quarter, column.lowFirst ? column.high : column.low});
    }
    return points;
}

double TraceReducer::centre() const {
    std::vector<double> values;
    for (const TracePoint& point : m_points)
        values.push_back(double{point.value});
    for (const TraceColumn& column : m_columns)
        values.push_back(double{column.mean});
    return median(std::move(values));
}

float TraceReducer::positionOf(double sample) const {
    return static_cast<float>(sample / static_cast<double>(m_samples));
}

} // namespace kvsig::tool
