#include "kvsig/kernel/ChannelTable.h"

#include "kvsig/util/Text.h"

#include <algorithm>
#include <utility>

namespace kvsig {
namespace {

constexpr std::size_t usualChannels = 64;

} // namespace

std::string defaultChannelName(std::size_t channel) { return "Ch" + std::to_string(channel + 1); }

ChannelTable::ChannelTable() { m_records.reserve(usualChannels); }

void ChannelTable::growTo(int count) {
    // At least twice as many, since maps make the table grow a channel at a time.
    if (std::cmp_greater(count, m_records.capacity()))
        m_records.reserve(std::max(static_cast<std::size_t>(count), 2 * m_records.capacity()));
    while (std::cmp_less(m_records.size(), count)) {
        ChannelRecord& record = m_records.emplace_back();
        copyText(record.name, defaultChannelName(m_records.size() - 1));
    }
}

const ChannelRecord* ChannelTable::find(int channel, int channelCount) const {
    if (channel < 0 || channel >= channelCount || std::cmp_greater_equal(channel, m_records.size()))
        return nullptr;
    return &m_records[static_cast<std::size_t>(channel)];
}

ChannelRecord* ChannelTable::find(int channel, int channelCount) {
    return const_cast<ChannelRecord*>(std::as_const(*this).find(channel, channelCount));
}

} // namespace kvsig
