#include "tool/RowStream.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kvsig::tool {
namespace {

constexpr long mostValues = 1L << 20;
constexpr long shortestWindow = 64;
// The filters' own run-in leaves a trace of what it cut off; so many times its length leaves none.
constexpr long runInLengths = 4;
constexpr long longestRunIn = 1L << 20;

} // namespace

long windowLengthFor(const std::vector<Row>& rows, SampleRange range) {
    const auto count = static_cast<long>(std::max<std::size_t>(rows.size(), 1));
    long length = std::max(mostValues / count, shortestWindow);
    if (!rows.empty()) {
        IDataReader& reader = *rows.front().source->reader();
        // A window that starts inside a page touches one page more than its length says.
        const long cached = long{reader.getPagePts()} * std::max(reader.getMaxPages() - 1, 1);
        length = std::min(length, std::max(cached, shortestWindow));
    }
    return std::min(length, range.length());
}

bool goOn(LongWork& work, SampleRange window, SampleRange range) {
    return work.goOn(static_cast<double>(window.last - range.first + 1),
                     static_cast<double>(range.length()));
}

RowStream::RowStream(const std::vector<Row>& rows, SampleRange range)
    : m_rows(&rows),
      m_range(range),
      m_window{range.first, range.first - 1},
      m_windowLength(static_cast<std::size_t>(windowLengthFor(rows, range))),
      m_values(rows.size() * m_windowLength) {}

bool RowStream::next() {
    if (m_window.last >= m_range.last)
        return false;
    m_window.first = m_window.last + 1;
    m_window.last = std::min(m_range.last, m_window.first + static_cast<long>(m_windowLength) - 1);
    for (std::size_t i = 0; i < m_rows->size(); ++i) {
        const Row& row = (*m_rows)[i];
        float* out = m_values.data() + i * m_windowLength;
        if (row.gap)
            continue; // stays at zeros
        if (isFromCounts(row))
            fillFromCounts(row, out);
        else
            fillFromSource(row, out);
    }
    m_started = true;
    return true;
}

bool RowStream::isFromCounts(const Row& row) const {
    return !m_kernelValues && row.countMap && !row.source->useFilter();
}

void RowStream::fillFromCounts(const Row& row, float* out) {
    constexpr long blockLength = 4096;
    std::array<std::int32_t, blockLength> counts{};
    // A pair's second recording may end before the first.
    const long end = std::min(m_window.last, row.place.storedSamples() - 1);
    for (long first = m_window.first; first <= end; first += blockLength) {
        const long last = std::min(end, first + blockLength - 1);
        row.place.readCounts(first, last, counts.data());
        out = std::transform(counts.begin(), counts.begin() + (last - first + 1), out,
                             [&row](std::int32_t count) {
                                 return static_cast<float>(row.countMap->valueOf(count));
                             });
    }
    const long missing = m_window.last - std::max(end, m_window.first - 1);
    std::fill_n(out, missing, static_cast<float>(row.offset));
}

void RowStream::fillFromSource(const Row& row, float* out) {
    const double gain = m_kernelValues ? 1.0 : row.gain;
    if (!m_started)
        runIn(row, gain, out);
    row.source->iterGetData(m_window.length(), out, gain);
    if (!m_kernelValues && row.offset != 0.0)
        std::transform(out, out + m_window.length(), out,
                       [&row](float x) { return static_cast<float>(x + row.offset); });
}

namespace {

// Before sample 0 there is nothing: zeros there would be a step for the filters to answer. They run
// in on the first sample's value instead.
void runInOnFirstSample(const Row& row, double gain, long length) {
    float first = 0.0F;
    row.source->_getData(0, 0, &first, gain);
    std::vector<float> constant(static_cast<std::size_t>(length), first);
    row.source->filters()->iterSetPosition(0, constant.data(), static_cast<int>(length));
}

} // namespace

void RowStream::runIn(const Row& row, double gain, float* work) {
    const long ownRunIn = row.source->useFilter() ? row.source->filters()->nPrePts() : 0;
    const long wanted = std::min(runInLengths * ownRunIn, longestRunIn);
    const bool cut = m_range.first < wanted + ownRunIn;
    long position = cut ? 0 : m_range.first - wanted;
    if (ownRunIn == 0)
        position = m_range.first;
    row.source->iterSetPosition(position, gain);
    if (cut && ownRunIn > 0)
        runInOnFirstSample(row, gain, wanted);
    while (position < m_range.first) {
        const long count = std::min(static_cast<long>(m_windowLength), m_range.first - position);
        row.source->iterGetData(count, work, gain);
        position += count;
    }
}

} // namespace kvsig::tool
