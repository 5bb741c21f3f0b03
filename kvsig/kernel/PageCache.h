#pragma once

#include "kvsig/kernel/DataPage.h"

#include <cstdint>
#include <deque>
#include <memory>

namespace kvsig {

/// How a reader's raw samples are laid out.
struct FrameLayout {
    int channels = 0;
    int bytesPerSample = 2;
    int chunkPoints = 1; ///< samples from one chunk to the next, at least 1

    [[nodiscard]] std::int64_t frameBytes() const {
        return std::int64_t{channels} * bytesPerSample;
    }
    friend bool operator==(const FrameLayout&, const FrameLayout&) = default;
};

/// What the page cache asks of its reader.
class PageSource {
  public:
    virtual FrameLayout frameLayout() = 0;
    /// Samples that one chunk read may write, at least FrameLayout::chunkPoints.
    virtual int largestChunk() = 0;
    virtual long maxDataIndex() = 0;
    virtual long sampleCount() = 0;
    virtual int readChunk(long firstSample, short* buffer) = 0;

  protected:
    ~PageSource() = default;
};

/// The pages of a recording, sorted by start. A page is read when a sample of it is asked for; once
/// `maxPages` are held, reading forward recycles the lowest page and reading backward the highest.
class PageCache {
  public:
    /// The page that holds `index`, read if need be; null before sample 0, past the last sample and
    /// when memory for it cannot be had. Valid until the next call.
    DataPage* pageAt(long index, PageSource& source);
    /// Fills `page` with the page of samples that holds `index`; false when memory runs out.
    bool readPage(DataPage& page, long index, PageSource& source);

    void flushAll();
    /// Drops the last page if it is incomplete, so that the next read sees what has been appended.
    void flushIncomplete();
    [[nodiscard]] std::size_t size() const { return m_pages.size(); }

    std::int32_t pagePoints = 0;
    std::int16_t maxPages = 15;

  private:
    using Page = std::unique_ptr<DataPage>;

    DataPage* readInto(Page page, long index, PageSource& source);
    Page takeFront();
    Page takeBack();

    std::deque<Page> m_pages;
    FrameLayout m_layout;
};

} // namespace kvsig
