#pragma once

#include "kvsig/kernel/DataPage.h"
#include "kvsig/kernel/FramePage.h"

#include <cstdint>
#include <deque>
#include <memory>

namespace kvsig {

class PageSource;
struct RecordLayout;

/// The pages of a recording, sorted by start. A page is read when a sample of it is asked for; once
/// `maxPages` are held, reading forward recycles the lowest page and reading backward the highest.
///
/// Pages hold frames. Where the reader knows the place of every sample in its file, they hold the
/// records as they are instead, of one channel alone as long as no second one is asked for; at most
/// `maxPages` of them keep their samples, the others are fetched again when they are asked for.
/// Where the file holds channels apart from each other, they hold planes, each of which is read
/// when its channel is first asked for.
class PageCache {
  public:
    struct Found {
        const DataPage* page = nullptr;
        const RecordLayout* records = nullptr; ///< of a page of records; null of one of frames
    };

    /// The page that holds `index`, with the samples of `channel` in it, read if need be; null
    /// before sample 0, past the last sample and when memory for it cannot be had. Valid until the
    /// next call.
    Found pageAt(long index, int channel, PageSource& source);
    /// The same with all channels, in frames.
    DataPage* framesAt(long index, PageSource& source);
    /// Fills `page` with the frames that hold `index`; false when memory runs out.
    bool readFrames(DataPage& page, long index, PageSource& source);

    void flushAll();
    /// Drops the last page if it is incomplete, so that the next read sees what has been appended.
    void flushIncomplete();
    [[nodiscard]] std::size_t size() const { return m_pages.size(); }

    std::int32_t pagePoints = 0;
    std::int16_t maxPages = 15;

  private:
    using Page = std::unique_ptr<DataPage>;
    static constexpr int pagesOfAWindow = 16; ///< that a user looks at, channel after channel

    DataPage* pageOf(long index, PageSource& source);
    const DataPage* withPlane(DataPage& page, long index, int channel, PageSource& source);
    DataPage* heldPage(long index);
    DataPage* begin(Page page, long index, PageSource& source);
    DataPage* insert(Page page);
    Page take(const DataPage& page);
    bool beginPage(DataPage& page, long index, PageSource& source);
    bool noteSamples(DataPage& page, std::int64_t samples, PageSource& source) const;
    static void noteLoaded(DataPage& page, std::int64_t samples);
    [[nodiscard]] std::int64_t pageLength() const;
    void setRange(DataPage& page, long index) const;
    void logNoMemory(std::int64_t frameBytes) const;
    [[nodiscard]] bool offersRecords(PageSource& source) const;
    [[nodiscard]] bool offersPlanes(PageSource& source) const;
    bool provide(DataPage& page, int channel, const RecordLayout& layout);
    void makeRoomFor(DataPage& page, std::int64_t bytes);
    Page takeFront();
    Page takeBack();
    void removeAll();

    std::deque<Page> m_pages;
    FrameLayout m_layout;
    bool m_lengthsDiffer = false; ///< of the pages held, which may then overlap
    std::uint64_t m_clock = 0;
    int m_pagesToKeep = 3; ///< with samples; a window of two pages' length touches so many
    int m_pagesAlone = pagesOfAWindow; ///< begun since a second channel was last asked for
};

} // namespace kvsig
