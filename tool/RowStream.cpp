#include "tool/RowStream.h"

#include <algorithm>

namespace kvsig::tool {
namespace {

constexpr std::size_t mostValues = std::size_t{1} << 20;
constexpr std::size_t shortestWindow = 64;

std::size_t windowLengthFor(std::size_t rows, long samples) {
    const std::size_t affordable =
        std::max(mostValues / std::max<std::size_t>(rows, 1), shortestWindow);
    return std::min(affordable, static_cast<std::size_t>(samples));
}

} // namespace

RowStream::RowStream(const std::vector<Row>& rows, SampleRange range)
    : m_rows(&rows),
      m_range(range),
      m_window{range.first, range.first - 1},
      m_windowLength(windowLengthFor(rows.size(), range.length())),
      m_values(rows.size() * m_windowLength) {}

bool RowStream::next() {
    if (m_window.last >= m_range.last)
        return false;
    m_window.first = m_window.last + 1;
    m_window.last = std::min(m_range.last, m_window.first + static_cast<long>(m_windowLength) - 1);
    for (std::size_t i = 0; i < m_rows->size(); ++i) {
        const Row& row = (*m_rows)[i];
        const double gain = m_kernelValues ? 1.0 : row.gain;
        float* out = m_values.data() + i * m_windowLength;
        if (!m_started)
            row.source->iterSetPosition(m_window.first, gain);
        row.source->iterGetData(m_window.length(), out, gain);
        if (!m_kernelValues && row.offset != 0.0)
            std::transform(out, out + m_window.length(), out,
                           [&row](float x) { return static_cast<float>(x + row.offset); });
    }
    m_started = true;
    return true;
}

} // namespace kvsig::tool
