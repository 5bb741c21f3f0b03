#include "StraightPager.h"

#include "Paging.h"

#include <algorithm>
#include <array>

namespace kvsig::bench {

StraightPager::StraightPager(const std::string& path, const PagingChain& chain)
    : m_file(path),
      m_chain(chain),
      m_pageRecords(m_file.recordsIn(pageSeconds)),
      m_runInRecords((chain.runIn + m_file.pointsPerRecord() - 1) / m_file.pointsPerRecord()),
      m_length(chain.runIn + m_pageRecords * m_file.pointsPerRecord()),
      m_channels(m_file.channels()),
      m_wanted(m_file.channels()),
      m_rows(pagingRows.size(), std::vector<float>(static_cast<std::size_t>(m_length))) {
    const auto room = (m_runInRecords + m_pageRecords) * m_file.pointsPerRecord();
    for (const auto& [first, second] : pagingRows)
        for (const auto channel :
             {static_cast<std::size_t>(first), static_cast<std::size_t>(second)})
            m_channels[channel].resize(static_cast<std::size_t>(room));
}

std::int64_t StraightPager::pages() const { return pagingPages(m_file.duration()); }

void StraightPager::decode(std::int64_t index) {
    const std::int64_t first = index * m_pageRecords - m_runInRecords;
    const std::int64_t missing = std::max<std::int64_t>(-first, 0);
    const std::int64_t missingPoints = missing * m_file.pointsPerRecord();
    for (std::size_t c = 0; c < m_channels.size(); ++c) {
        if (m_channels[c].empty())
            continue;
        std::fill_n(m_channels[c].data(), missingPoints, 0.0F);
        m_wanted[c] = m_channels[c].data() + missingPoints;
    }
    m_file.read(first + missing, m_runInRecords + m_pageRecords - missing, m_wanted.data());
}

const float* StraightPager::samples(int channel) const {
    return m_channels[static_cast<std::size_t>(channel)].data() +
           m_runInRecords * m_file.pointsPerRecord() - m_chain.runIn;
}

void StraightPager::page(std::int64_t index) {
    decode(index);
    for (std::size_t r = 0; r < m_rows.size(); ++r) {
        const float* const a = samples(pagingRows[r].first);
        const float* const b = samples(pagingRows[r].second);
        float* const out = m_rows[r].data();
        for (std::int64_t i = 0; i < m_length; ++i)
            out[i] = a[i] - b[i];
        straightFirstOrder(m_chain.lowPass, out, m_length);
        straightFirstOrder(m_chain.highPass, out, m_length);
        straightSecondOrder(m_chain.notch, out, m_length);
    }
}

void StraightPager::sideBySide(std::int64_t index) {
    decode(index);
    std::array<StraightRow, pagingRows.size()> rows;
    for (std::size_t r = 0; r < rows.size(); ++r)
        rows[r] = {samples(pagingRows[r].first), samples(pagingRows[r].second),
                   m_rows[r].data() + m_chain.runIn};
    straightLanes(m_chain, rows, m_length);
}

void StraightPager::fetch(std::int64_t index) {
    m_file.fetch(index * m_pageRecords, m_pageRecords);
}

std::span<const float> StraightPager::row(std::size_t index) const {
    return std::span(m_rows[index]).subspan(static_cast<std::size_t>(m_chain.runIn));
}

std::size_t StraightPager::callerBytes() const {
    return m_rows.size() * static_cast<std::size_t>(m_length - m_chain.runIn) * sizeof(float);
}

} // namespace kvsig::bench
