#include "kvsig/kernel/DataPage.h"

#include <cstring>

namespace kvsig {

bool PageBuffer::reserve(std::int64_t bytes) {
    if (bytes <= m_capacity)
        return true;
    m_bytes.reset();
    m_capacity = 0;
    m_used = 0;
    if (bytes > maxPageBytes)
        return false;
    // Not operator new: its memory has to be cleared by writing to all of it.
    m_bytes.reset(static_cast<std::byte*>(std::calloc(static_cast<std::size_t>(bytes), 1)));
    if (!m_bytes)
        return false;
    m_capacity = bytes;
    return true;
}

void PageBuffer::zero(std::int64_t begin, std::int64_t end) {
    end = std::min(end, m_used);
    if (begin < end)
        std::memset(m_bytes.get() + begin, 0, static_cast<std::size_t>(end - begin));
}

} // namespace kvsig
