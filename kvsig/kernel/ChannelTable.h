#pragma once

#include "kvsig/kernel/ChannelRecord.h"

#include <cstddef>
#include <string>
#include <vector>

namespace kvsig {

/// What a channel is called that nothing names: "Ch<n>", n from 1.
[[nodiscard]] std::string defaultChannelName(std::size_t channel);

/// The channel records of a reader. It may hold fewer or more records than the reader has
/// channels; look-ups test both.
class ChannelTable {
  public:
    ChannelTable();

    /// Appends default records, named "Ch<n>" by their position, until there are `count`.
    void growTo(int count);

    /// The record of `channel` if it lies in 0..channelCount - 1 and in the table, else null.
    [[nodiscard]] const ChannelRecord* find(int channel, int channelCount) const;
    [[nodiscard]] ChannelRecord* find(int channel, int channelCount);

  private:
    std::vector<ChannelRecord> m_records;
};

} // namespace kvsig
