#include "KvsigPager.h"

#include "KvsigWeights.h"
#include "Paging.h"

#include <cmath>
#include <stdexcept>

namespace kvsig::bench {

KvsigPager::KvsigPager(const std::string& path) {
    std::string error;
    m_reader = openReader(path.c_str(), 0, &error);
    if (!m_reader)
        throw std::runtime_error(error);
    const double rate = m_reader->samplingRate();
    m_montage.setReader(m_reader.get());
    for (const auto& [channel1, channel2] : pagingRows)
        m_montage.createSource(channel1, channel2);
    m_montage.setHighPass({.use = true, .cutoff = pagingHighPass});
    m_montage.setLowPass({.use = true, .cutoff = pagingLowPass});
    m_montage.setNotch({.use = true,
                        .cutoff = pagingNotch,
                        .second = notchWidthFrequency(pagingNotch, pagingNotchHalfWidth, rate)});
    m_montage.updateFilters();
    m_pageLength = std::lround(pageSeconds * rate);
    m_runIn = m_montage.source(0)->filters()->nPrePts();
    m_rows.assign(pagingRows.size(), std::vector<float>(static_cast<std::size_t>(m_pageLength)));
    for (std::vector<float>& row : m_rows)
        m_rowPointers.push_back(row.data());
}

std::int64_t KvsigPager::pages() const { return pagingPages(m_reader->duration()); }

long KvsigPager::firstOf(std::int64_t index) const { return index * m_pageLength; }

void KvsigPager::page(std::int64_t index) {
    const long first = firstOf(index);
    for (std::size_t r = 0; r < m_rows.size(); ++r)
        m_montage.source(static_cast<int>(r))
            ->getData(first, first + m_pageLength - 1, m_rows[r].data(), 1.0);
}

void KvsigPager::allRows(std::int64_t index) {
    const long first = firstOf(index);
    m_montage.getData(first, first + m_pageLength - 1, m_rowPointers.data(), 1.0);
}

void KvsigPager::unfiltered(std::int64_t index) {
    m_work.resize(static_cast<std::size_t>(m_runIn + m_pageLength));
    const long first = firstOf(index);
    for (std::size_t r = 0; r < m_rows.size(); ++r)
        m_montage.source(static_cast<int>(r))
            ->_getData(first - m_runIn, first + m_pageLength - 1, m_work.data(), 1.0);
}

void KvsigPager::channelsOnly(std::int64_t index) {
    m_work.resize(static_cast<std::size_t>(m_runIn + m_pageLength));
    const long first = firstOf(index);
    for (const auto& [channel1, channel2] : pagingRows)
        for (const int channel : {channel2, channel1})
            m_reader->getData(channel, first - m_runIn, first + m_pageLength - 1, m_work.data(),
                              1.0, 0);
}

std::size_t KvsigPager::callerBytes() const {
    return m_rows.size() * static_cast<std::size_t>(m_pageLength) * sizeof(float);
}

PagingChain KvsigPager::chain() const {
    const FilterList& filters = *m_montage.source(0)->filters();
    return {.lowPass = recurrence(*filters.filter(0)),
            .highPass = recurrence(*filters.filter(1)),
            .notch = recurrence(*filters.filter(2)),
            .runIn = m_runIn};
}

} // namespace kvsig::bench
