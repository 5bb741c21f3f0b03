#include "tool/CountStream.h"

#include "tool/RowStream.h"

#include <algorithm>

namespace kvsig::tool {

CountStream::CountStream(const Selection& selection)
    : m_selection(&selection),
      m_window{selection.range.first, selection.range.first - 1},
      m_windowLength(windowLengthFor(selection.rows.rows(), selection.range)),
      m_columns(selection.rows.rows().size()) {}

bool CountStream::next(LongWork& work) {
    const SampleRange range = m_selection->range;
    if (m_window.last >= range.last)
        return false;
    m_window.first = m_window.last + 1;
    m_window.last = std::min(range.last, m_window.first + m_windowLength - 1);
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        m_columns[i].resize(static_cast<std::size_t>(m_window.length()));
        m_selection->rows.rows()[i].place.readCounts(m_window.first, m_window.last,
                                                     m_columns[i].data());
    }
    return goOn(work, m_window, range);
}

} // namespace kvsig::tool
