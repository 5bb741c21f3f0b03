#pragma once

#include "kvsig/kernel/ChannelTable.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kvsig {

/// The first channel of each grid 1 name, without regard to letter case. An empty name is found as
/// any other.
class GridIndex {
  public:
    using NameOf = std::function<const char*(int channel)>;

    void clear();
    /// Whether find() answers for a reader of `channelCount` channels.
    [[nodiscard]] bool covers(int channelCount) const { return m_channels == channelCount; }
    /// Indexes the table's names; nothing when `nameOf` hands out others, as a format may that has
    /// its own grid1().
    void build(const ChannelTable& table, int channelCount, const NameOf& nameOf);
    /// -1 when no channel has the name.
    [[nodiscard]] int find(std::string_view name) const;

  private:
    int m_channels = -1;
    std::unordered_map<std::string, int> m_first;
};

} // namespace kvsig
