#pragma once

#include "kvsig/kernel/FramePage.h"

namespace kvsig {

struct RecordLayout;

/// What the page cache asks of its reader.
class PageSource {
  public:
    virtual FrameLayout frameLayout() = 0;
    /// Samples that one chunk read may write, at least FrameLayout::chunkPoints.
    virtual int largestChunk() = 0;
    virtual long maxDataIndex() = 0;
    virtual long sampleCount() = 0;
    virtual int readChunk(long firstSample, short* buffer) = 0;
    /// Where the samples stand in the file; null when only chunk reads can tell.
    virtual const RecordLayout* recordLayout() = 0;

  protected:
    ~PageSource() = default;
};

} // namespace kvsig
