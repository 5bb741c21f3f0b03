#include "kvsig/kernel/GridIndex.h"

#include "kvsig/util/Text.h"

namespace kvsig {

void GridIndex::clear() {
    m_channels = -1;
    m_first.clear();
}

void GridIndex::build(const ChannelTable& table, int channelCount, const NameOf& nameOf) {
    clear();
    for (int i = 0; i < channelCount; ++i) {
        const ChannelRecord* record = table.find(i, channelCount);
        if (!record || nameOf(i) != record->grid1)
            return;
        m_first.try_emplace(lowerCase(record->grid1), i);
    }
    m_channels = channelCount;
}

int GridIndex::find(std::string_view name) const {
    const auto found = m_first.find(lowerCase(name));
    return found == m_first.end() ? -1 : found->second;
}

} // namespace kvsig
