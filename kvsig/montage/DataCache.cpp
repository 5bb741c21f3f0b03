#include "kvsig/montage/DataCache.h"

#include <algorithm>
#include <new>
#include <utility>

namespace kvsig {

DataCache::DataCache(const DataCache& other) { *this = other; }

DataCache& DataCache::operator=(const DataCache& other) {
    if (this == &other)
        return *this;
    nFirst = nLast = -1;
    dScale = other.dScale;
    if (other.length() > 0 && reserve(other.length())) {
        nFirst = other.nFirst;
        nLast = other.nLast;
        std::copy_n(other.pData, other.length(), pData);
    }
    return *this;
}

std::int32_t DataCache::length() const {
    const bool empty = nFirst == -1 && nLast == -1;
    return empty || nLast < nFirst ? 0 : nLast - nFirst + 1;
}

bool DataCache::holds(long sample) const {
    return length() > 0 && sample >= nFirst && sample <= nLast;
}

bool DataCache::reserve(std::int32_t count) {
    if (count <= nAlloc)
        return true;
    std::unique_ptr<float[]> block(new (std::nothrow) float[static_cast<std::size_t>(count)]);
    if (!block)
        return false;
    m_block = std::move(block);
    pData = m_block.get();
    nAlloc = count;
    return true;
}

} // namespace kvsig
