#include "kvsig/kernel/PageCache.h"

#include "kvsig/kernel/PageSource.h"
#include "kvsig/kernel/PlanarPage.h"
#include "kvsig/kernel/RecordPage.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <string>
#include <utility>

namespace kvsig {
namespace {

bool holds(const DataPage& page, long index) { return page.start <= index && index <= page.end; }

bool hasSamples(const DataPage& page) {
    return page.kind == PageKind::records && page.firstChannel >= 0;
}

void logRead(const DataPage& page, std::int64_t samples) {
    logMessage(logInfo, "DataReader: Read " + std::to_string(samples) + " samples at " +
                            std::to_string(page.start) + ", " +
                            (page.complete ? "complete" : "incomplete") + " page");
}

} // namespace

PageCache::Found PageCache::pageAt(long index, int channel, PageSource& source) {
    DataPage* page = pageOf(index, source);
    if (!page || page->kind == PageKind::frames)
        return {page};
    if (page->kind == PageKind::planes)
        return {withPlane(*page, index, channel, source)};
    const RecordLayout* layout = source.recordLayout();
    if (!layout)
        return {framesAt(index, source)};
    return provide(*page, channel, *layout) ? Found{page, layout} : Found{};
}

const DataPage* PageCache::withPlane(DataPage& page, long index, int channel, PageSource& source) {
    if (page.loadedPlanes[static_cast<std::size_t>(channel)])
        return &page;
    const auto samples = loadPlane(page, channel, source);
    if (!samples)
        return framesAt(index, source);
    noteLoaded(page, *samples);
    return &page;
}

// A page whose frames cannot be had is none: it may have lost what it held.
DataPage* PageCache::framesAt(long index, PageSource& source) {
    DataPage* held = pageOf(index, source);
    if (!held || held->kind == PageKind::frames)
        return held;
    Page page = take(*held);
    return readFrames(*page, index, source) ? insert(std::move(page)) : nullptr;
}

DataPage* PageCache::pageOf(long index, PageSource& source) {
    if (const FrameLayout layout = source.frameLayout(); !(layout == m_layout)) {
        removeAll();
        m_layout = layout;
    }
    if (DataPage* page = heldPage(index))
        return page;
    if (index < 0 || index > saturate<std::int32_t>(source.maxDataIndex()))
        return nullptr;

    const auto held = static_cast<std::int64_t>(m_pages.size());
    if (held > std::max<std::int64_t>(maxPages, 0) &&
        (index < m_pages.front()->start || held > std::int64_t{10} * maxPages)) {
        logMessage(logInfo, "DataReader: Removing all pages");
        removeAll();
    }

    const bool roomLeft = std::cmp_less(m_pages.size(), maxPages);
    if (!m_pages.empty() && !roomLeft) {
        if (index > m_pages.back()->end)
            return begin(takeFront(), index, source);
        if (index < m_pages.front()->start)
            return begin(takeBack(), index, source);
    }
    // A gap between cached pages is filled regardless of the limit.
    return begin(std::make_unique<DataPage>(), index, source);
}

DataPage* PageCache::heldPage(long index) {
    if (m_lengthsDiffer) {
        const auto page = std::find_if(m_pages.begin(), m_pages.end(),
                                       [index](const Page& p) { return holds(*p, index); });
        return page == m_pages.end() ? nullptr : page->get();
    }
    const auto next =
        std::upper_bound(m_pages.begin(), m_pages.end(), index,
                         [](long wanted, const Page& page) { return wanted < page->start; });
    const auto page = next == m_pages.begin() ? next : next - 1;
    return page != next && holds(**page, index) ? page->get() : nullptr;
}

DataPage* PageCache::begin(Page page, long index, PageSource& source) {
    return beginPage(*page, index, source) ? insert(std::move(page)) : nullptr;
}

DataPage* PageCache::insert(Page page) {
    const auto lengthOf = [](const DataPage& p) { return std::int64_t{p.end} - p.start; };
    if (!m_pages.empty() && lengthOf(*m_pages.front()) != lengthOf(*page))
        m_lengthsDiffer = true;
    const auto place =
        std::upper_bound(m_pages.begin(), m_pages.end(), page->start,
                         [](long start, const Page& other) { return start < other->start; });
    return m_pages.insert(place, std::move(page))->get();
}

bool PageCache::beginPage(DataPage& page, long index, PageSource& source) {
    if (offersRecords(source)) {
        setRange(page, index);
        m_pagesAlone = std::min(m_pagesAlone + 1, pagesOfAWindow);
        return noteSamples(page, beginRecordPage(page, *source.recordLayout()), source);
    }
    if (offersPlanes(source)) {
        setRange(page, index);
        return noteSamples(page, beginPlanarPage(page, source), source);
    }
    return readFrames(page, index, source);
}

bool PageCache::readFrames(DataPage& page, long index, PageSource& source) {
    setRange(page, index);
    return noteSamples(page, loadFramePage(page, pageLength(), source), source);
}

// `samples` of the page are there; below 0, memory for it is not, and the page is of nothing.
bool PageCache::noteSamples(DataPage& page, std::int64_t samples, PageSource& source) const {
    if (samples < 0) {
        logNoMemory(source.frameLayout().frameBytes());
        page.end = page.start - 1;
        return false;
    }
    page.samples = samples;
    page.complete = samples >= pageLength() && page.end < source.sampleCount();
    logRead(page, samples);
    return true;
}

// What a page was begun with is what the recording has for it. The file may hold less by now.
void PageCache::noteLoaded(DataPage& page, std::int64_t samples) {
    if (samples >= page.samples)
        return;
    page.samples = samples;
    page.complete = false;
    logRead(page, samples);
}

// The frame size stands in the second field in spite of its label; kept on purpose.
void PageCache::logNoMemory(std::int64_t frameBytes) const {
    logMessage(logInfo, "Error allocating memory at DataReader::readPageAtIndex. PagePts=" +
                            std::to_string(pageLength()) +
                            ", BytesPerSample=" + std::to_string(frameBytes));
}

std::int64_t PageCache::pageLength() const { return std::max(pagePoints, 1); }

void PageCache::setRange(DataPage& page, long index) const {
    const std::int64_t start = index / pageLength() * pageLength();
    page.start = saturate<std::int32_t>(start);
    page.end = saturate<std::int32_t>(start + pageLength() - 1);
}

// Frames that are too large for a page read as zeros, so their records must not be shown either.
// Records may hold far more than channels (annotations): frames of those cost less.
bool PageCache::offersRecords(PageSource& source) const {
    constexpr std::int64_t harmless = std::int64_t{4} << 20;
    const RecordLayout* layout = source.recordLayout();
    if (!layout || layout->points <= 0 || pageLength() % layout->points != 0 ||
        std::cmp_greater(m_layout.channels, layout->channels.size()) ||
        !framesFitAPage(pageLength(), source))
        return false;
    const std::int64_t frameBytes = pageLength() * source.frameLayout().frameBytes();
    const std::int64_t mostBytes = std::min(std::max(2 * frameBytes, harmless), maxPageBytes);
    return pageLength() / layout->points <=
           mostBytes / std::max<std::int64_t>(layout->recordBytes(), 1);
}

bool PageCache::offersPlanes(PageSource& source) const {
    return m_layout.channels > 0 && !source.channelsStoredWith(0).empty() &&
           framesFitAPage(pageLength(), source);
}

// A channel that is read through the whole file is read alone. Once several are wanted, the next
// pages are read whole: who looks at a window asks for all its channels in turn.
bool PageCache::provide(DataPage& page, int channel, const RecordLayout& layout) {
    page.lastUse = ++m_clock;
    if (page.firstChannel == channel)
        return true;
    if (page.firstChannel >= 0)
        m_pagesAlone = 0;
    if (page.everyChannel && page.firstChannel >= 0)
        return true;
    const bool alone =
        page.firstChannel < 0 && m_pagesAlone >= pagesOfAWindow && isSparse(layout, channel);
    if (page.firstChannel < 0)
        makeRoomFor(page, page.records * layout.recordBytes());
    if (alone ? loadOneChannel(page, layout, channel) : loadWholeRecords(page, layout, channel)) {
        noteLoaded(page, page.records * layout.points);
        return true;
    }
    logNoMemory(m_layout.frameBytes());
    return false;
}

// Few pages keep their samples, so that reading on stays in the processor's caches: fetching a page
// again costs little. Who comes back to pages that lost theirs gets more of them kept.
void PageCache::makeRoomFor(DataPage& page, std::int64_t bytes) {
    constexpr std::int64_t nearBytes = 512 << 10;
    if (page.lostSamples)
        m_pagesToKeep = saturate<int>(2 * std::int64_t{m_pagesToKeep});
    const std::int64_t keep = std::min(
        std::max(nearBytes / std::max<std::int64_t>(bytes, 1), std::int64_t{m_pagesToKeep}),
        std::max<std::int64_t>(maxPages, 1));
    if (std::count_if(m_pages.begin(), m_pages.end(),
                      [](const Page& held) { return hasSamples(*held); }) < keep)
        return;
    DataPage* oldest = nullptr;
    for (const Page& held : m_pages)
        if (hasSamples(*held) && (!oldest || held->lastUse < oldest->lastUse))
            oldest = held.get();
    std::swap(page.buffer, oldest->buffer);
    oldest->buffer = PageBuffer();
    oldest->firstChannel = -1;
    oldest->lostSamples = true;
}

PageCache::Page PageCache::take(const DataPage& page) {
    const auto place = std::find_if(m_pages.begin(), m_pages.end(),
                                    [&page](const Page& held) { return held.get() == &page; });
    Page taken = std::move(*place);
    m_pages.erase(place);
    return taken;
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

void PageCache::removeAll() {
    m_pages.clear();
    m_lengthsDiffer = false;
}

void PageCache::flushAll() {
    logMessage(logInfo, "DataReader: Removing all " + std::to_string(m_pages.size()) + " pages");
    removeAll();
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
