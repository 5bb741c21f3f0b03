#include "kvsig/kernel/PlanarPage.h"

#include "kvsig/kernel/PageSource.h"
#include "kvsig/kernel/SamplePlanes.h"

#include <algorithm>
#include <span>

namespace kvsig {
namespace {

std::int64_t pointsOf(const DataPage& page) { return std::int64_t{page.end} - page.start + 1; }

// A host's reader may say anything.
bool isGroupOf(std::span<const int> together, int channel, int channels) {
    return std::is_sorted(together.begin(), together.end()) &&
           std::binary_search(together.begin(), together.end(), channel) && together.front() >= 0 &&
           together.back() < channels;
}

} // namespace

std::int64_t beginPlanarPage(DataPage& page, PageSource& source) {
    const FrameLayout layout = source.frameLayout();
    page.kind = PageKind::planes;
    page.loadedPlanes.assign(static_cast<std::size_t>(layout.channels), false);
    if (!page.buffer.reserve(pointsOf(page) * layout.frameBytes()))
        return -1;
    return std::clamp<std::int64_t>(std::int64_t{source.sampleCount()} - page.start, 0,
                                    pointsOf(page));
}

std::optional<std::int64_t> loadPlane(DataPage& page, int channel, PageSource& source) {
    const FrameLayout layout = source.frameLayout();
    const int bytes = layout.bytesPerSample;
    const std::int64_t points = pointsOf(page);
    const std::span<const int> together = source.channelsStoredWith(channel);
    if (!isGroupOf(together, channel, layout.channels))
        return std::nullopt;
    page.buffer.use((together.back() + 1) * points * bytes);
    const std::int64_t arrived = std::clamp<std::int64_t>(
        source.readPlanes(channel, page.start, points, {page.buffer.data(), points}), 0, points);
    for (const int c : together) {
        page.buffer.zero((c * points + arrived) * bytes, (c + 1) * points * bytes);
        page.loadedPlanes[static_cast<std::size_t>(c)] = true;
    }
    return arrived;
}

RawRun planarRun(const DataPage& page, const FrameLayout& layout, int channel, long first,
                 std::int64_t count) {
    const std::int64_t place = channel * pointsOf(page) + first - page.start;
    return {.code = nativeCode(layout),
            .bytes = page.buffer.data() + place * layout.bytesPerSample,
            .step = layout.bytesPerSample,
            .samples = count,
            .points = count,
            .count = count};
}

} // namespace kvsig
