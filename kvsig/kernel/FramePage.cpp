#include "kvsig/kernel/FramePage.h"

#include "kvsig/kernel/PageSource.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>

namespace kvsig {
namespace {

struct ChunkRead {
    std::int64_t samples = 0; ///< frames that arrived
    std::int64_t stopped = 0; ///< frames up to where the reading stopped, the short ones included
};

std::int64_t largestChunk(PageSource& source, const FrameLayout& layout) {
    return std::max(source.largestChunk(), layout.chunkPoints);
}

std::int64_t chunksOf(std::int64_t points, const FrameLayout& layout) {
    return std::max<std::int64_t>(points / layout.chunkPoints, 1);
}

// Chunks are asked for until one brings nothing. What a short chunk leaves open reads as zeros.
ChunkRead readChunks(DataPage& page, std::int64_t chunks, PageSource& source,
                     const FrameLayout& layout) {
    ChunkRead read;
    const std::int64_t frameBytes = layout.frameBytes();
    const std::int64_t chunkFrames = largestChunk(source, layout);
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

// The last chunk may overhang: a reader's chunk can be larger than its part of the page.
std::int64_t roomFor(std::int64_t points, PageSource& source) {
    const FrameLayout layout = source.frameLayout();
    return std::max(points, (chunksOf(points, layout) - 1) * layout.chunkPoints +
                                largestChunk(source, layout));
}

} // namespace

bool framesFitAPage(std::int64_t points, PageSource& source) {
    const std::int64_t frameBytes = std::max<std::int64_t>(source.frameLayout().frameBytes(), 1);
    return roomFor(points, source) <= maxPageBytes / frameBytes;
}

std::int64_t loadFramePage(DataPage& page, std::int64_t points, PageSource& source) {
    const FrameLayout layout = source.frameLayout();
    const std::int64_t frameBytes = layout.frameBytes();
    page.kind = PageKind::frames;
    if (!framesFitAPage(points, source) ||
        !page.buffer.reserve(roomFor(points, source) * frameBytes))
        return -1;
    if (frameBytes <= 0)
        return 0;
    const ChunkRead read = readChunks(page, chunksOf(points, layout), source, layout);
    page.buffer.zero(read.stopped * frameBytes, points * frameBytes);
    return read.samples;
}

RawCode nativeCode(const FrameLayout& layout) {
    return layout.bytesPerSample == 2 ? RawCode::native16 : RawCode::native32;
}

RawRun frameRun(const DataPage& page, const FrameLayout& layout, int channel, long first,
                std::int64_t count) {
    return {.code = nativeCode(layout),
            .bytes = page.buffer.data() + (first - page.start) * layout.frameBytes() +
                     std::int64_t{channel} * layout.bytesPerSample,
            .step = layout.frameBytes(),
            .samples = count,
            .points = count,
            .count = count};
}

} // namespace kvsig
