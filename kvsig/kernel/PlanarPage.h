#pragma once

#include "kvsig/kernel/DataPage.h"
#include "kvsig/kernel/FramePage.h"
#include "kvsig/kernel/RawRun.h"

#include <cstdint>
#include <optional>

/// Pages that hold the channels one after another, each read when it is asked for.
namespace kvsig {

class PageSource;

/// Makes `page`, whose start and end are set, one of planes, with none loaded yet. Returns the
/// samples that the recording has for it; -1 when memory runs out.
std::int64_t beginPlanarPage(DataPage& page, PageSource& source);

/// Reads `channel` and what the file holds together with it. Returns the samples that arrived; the
/// rest is zeros. Nothing when the source tells of no such channels.
std::optional<std::int64_t> loadPlane(DataPage& page, int channel, PageSource& source);

/// The run of `count` samples from `first` on, which lie in the page. The channel is loaded.
[[nodiscard]] RawRun planarRun(const DataPage& page, const FrameLayout& layout, int channel,
                               long first, std::int64_t count);

} // namespace kvsig
