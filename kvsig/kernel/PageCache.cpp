#include "kvsig/kernel/PageCache.h"

#include "kvsig/util/LogSink.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <string>
#include <utility>

namespace kvsig {
namespace {

struct ChunkRead {
    std::int64_t samples = 0; ///< frames that arrived
    std::int64_t stopped = 0; ///< frames up to where the reading stopped, the short ones included
};

// Chunks are asked for until one brings nothing. What a short chunk leaves open reads as zeros.
ChunkRead readChunks(DataPage& page, std::int64_t chunks, std::int64_t chunkFrames,
                     PageSource& source, const FrameLayout& layout) {
    ChunkRead read;
    const std::int64_t frameBytes = layout.frameBytes();
    for (std::int64_t i = 0; i < chunks; ++i) {
        const std::int64_t begin = read.stopped * frameBytes;
        page.buffer.use(begin + chunkFrames * frameBytes);
        std::byte* part = page.buffer.data() + begin;
        const int count = source.readChunk(saturate<long>(page.start + read.stopped),
                                           static_cast<short*>(static_cast<void*>(part)));
        if (count <= 0)
            break;
        // A reader may hand out more than a chunk; only the chunk's own part is counted.
        const std::int64_t taken = std::min(count, layout.chunkPoints);
        read.samples += taken;
        read.stopped += layout.chunkPoints;
        page.buffer.zero(begin + taken * frameBytes, read.stopped * frameBytes);
    }
    return read;
}

} // namespace

DataPage* PageCache::pageAt(long index, PageSource& source) {
    if (const FrameLayout layout = source.frameLayout(); !(layout == m_layout)) {
        m_pages.clear();
        m_layout = layout;
    }
    for (const Page& page : m_pages)
        if (page->start <= index && index <= page->end)
            return page.get();
    if (index < 0 || index > saturate<std::int32_t>(source.maxDataIndex()))
        return nullptr;

    const auto held = static_cast<std::int64_t>(m_pages.size());
    if (held > std::max<std::int64_t>(maxPages, 0) &&
        (index < m_pages.front()->start || held > std::int64_t{10} * maxPages)) {
        logMessage(logInfo, "DataReader: Removing all pages");
        m_pages.clear();
    }

    const bool roomLeft = std::cmp_less(m_pages.size(), maxPages);
    if (!m_pages.empty() && !roomLeft) {
        if (index > m_pages.back()->end)
            return readInto(takeFront(), index, source);
        if (index < m_pages.front()->start)
            return readInto(takeBack(), index, source);
    }
    // A gap between cached pages is filled regardless of the limit.
    return readInto(std::make_unique<DataPage>(), index, source);
}

DataPage* PageCache::readInto(Page page, long index, PageSource& source) {
    if (!readPage(*page, index, source))
        return nullptr;
    const auto place =
        std::upper_bound(m_pages.begin(), m_pages.end(), page->start,
                         [](long start, const Page& other) { return start < other->start; });
    return m_pages.insert(place, std::move(page))->get();
}

PageCache::Page PageCache::takeFront() {
    Page page = std::move(m_pages.front());
    m_pages.pop_front();
    return page;
}

PageCache::Page PageCache::takeBack() {
    Page page = std::move(m_pages.back());
    m_pages.pop_back();
    return page;
}

bool PageCache::readPage(DataPage& page, long index, PageSource& source) {
    const FrameLayout layout = source.frameLayout();
    const std::int64_t points = std::max(pagePoints, 1);
    const std::int64_t start = index / points * points;
    const std::int64_t chunks = std::max<std::int64_t>(points / layout.chunkPoints, 1);
    const std::int64_t frameBytes = layout.frameBytes();

    // The last chunk may overhang: a reader's chunk can be larger than its part of the page.
    const std::int64_t chunkFrames = std::max(source.largestChunk(), layout.chunkPoints);
    const std::int64_t frames = std::max(points, (chunks - 1) * layout.chunkPoints + chunkFrames);
    const bool affordable = frames <= maxPageBytes / std::max<std::int64_t>(frameBytes, 1);
    if (!affordable || !page.buffer.reserve(frames * frameBytes)) {
        // The frame size stands in the second field in spite of its label; kept on purpose.
        logMessage(logInfo, "Error allocating memory at DataReader::readPageAtIndex. PagePts=" +
                                std::to_string(points) +
                                ", BytesPerSample=" + std::to_string(frameBytes));
        return false;
    }

    page.start = saturate<std::int32_t>(start);
    page.end = saturate<std::int32_t>(start + points - 1);
    ChunkRead read;
    if (frameBytes > 0) {
        read = readChunks(page, chunks, chunkFrames, source, layout);
        page.buffer.zero(read.stopped * frameBytes, points * frameBytes);
    }
    page.complete = read.samples >= points && page.end < source.sampleCount();
    logMessage(logInfo, "DataReader: Read " + std::to_string(read.samples) + " samples at " +
                            std::to_string(page.start) + ", " +
                            (page.complete ? "complete" : "incomplete") + " page");
    return true;
}

void PageCache::flushAll() {
    logMessage(logInfo, "DataReader: Removing all " + std::to_string(m_pages.size()) + " pages");
    m_pages.clear();
}

void PageCache::flushIncomplete() {
    if (m_pages.empty() || m_pages.back()->complete)
        return;
    logMessage(logInfo, "DataReader: Removing incomplete page " +
                            std::to_string(m_pages.back()->start) + "-" +
                            std::to_string(m_pages.back()->end));
    m_pages.pop_back();
}

} // namespace kvsig
