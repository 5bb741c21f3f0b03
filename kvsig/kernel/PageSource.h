#pragma once

#include "kvsig/kernel/FramePage.h"

#include <cstdint>
#include <span>

namespace kvsig {

struct RecordLayout;
struct SamplePlanes;

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
    /// The channels that are read with `channel`, ascending; none when only chunk reads can.
    virtual std::span<const int> channelsStoredWith(int channel) = 0;
    /// Samples `first` and the `count` - 1 behind it of these channels; returns how many arrived,
    /// fewer where the file ends.
    virtual std::int64_t readPlanes(int channel, long first, std::int64_t count,
                                    const SamplePlanes& planes) = 0;

  protected:
    ~PageSource() = default;
};

} // namespace kvsig
