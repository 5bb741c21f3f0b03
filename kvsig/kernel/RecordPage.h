#pragma once

#include "kvsig/kernel/DataPage.h"
#include "kvsig/kernel/RawRun.h"
#include "kvsig/kernel/RecordLayout.h"

#include <cstdint>

/// Pages that hold the records of a file as they are.
namespace kvsig {

/// Makes `page`, whose start and end are set and lie on records, one of `layout`'s, with nothing
/// loaded yet. Returns the samples that the file holds for it.
std::int64_t beginRecordPage(DataPage& page, const RecordLayout& layout);

/// One channel's bytes lie so far apart that reading them alone beats reading all of the page.
[[nodiscard]] bool isSparse(const RecordLayout& layout, int channel);

/// Reads a channel's samples alone.
bool loadOneChannel(DataPage& page, const RecordLayout& layout, int channel);

/// Reads the samples of all channels, because `channel` is asked for. From the first record that
/// cannot be read whole the page holds nothing.
///
/// Both: false, and the page holds no samples, when memory runs out.
bool loadWholeRecords(DataPage& page, const RecordLayout& layout, int channel);

/// The run from sample `first` on, of at most `count` values (1 or more), all of which lie in the
/// page: up to where the file's records end, or what is behind them, as raw zeros. The channel is
/// loaded.
[[nodiscard]] RawRun recordRun(const DataPage& page, const RecordLayout& layout, int channel,
                               long first, std::int64_t count);

} // namespace kvsig
