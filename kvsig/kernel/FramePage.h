#pragma once

#include "kvsig/kernel/DataPage.h"
#include "kvsig/kernel/RawRun.h"

#include <cstdint>

/// Pages that hold frames, as a reader's chunk reads hand them out.
namespace kvsig {

class PageSource;

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

/// Whether a page of `points` frames takes no more than maxPageBytes.
[[nodiscard]] bool framesFitAPage(std::int64_t points, PageSource& source);

/// Reads the chunks of a page of `points` frames whose start is set. Returns the samples that
/// arrived; the rest is zeros. -1 when memory runs out or the frames do not fit a page.
std::int64_t loadFramePage(DataPage& page, std::int64_t points, PageSource& source);

/// How values of frames and planes are stored.
[[nodiscard]] RawCode nativeCode(const FrameLayout& layout);

/// The run of `count` samples from `first` on, which lie in the page.
[[nodiscard]] RawRun frameRun(const DataPage& page, const FrameLayout& layout, int channel,
                              long first, std::int64_t count);

} // namespace kvsig
