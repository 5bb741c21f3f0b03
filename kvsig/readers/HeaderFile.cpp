#include "kvsig/readers/HeaderFile.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kvsig {

bool HeaderFile::open(const char* path, std::string* reason) {
    m_fault.clear();
    const bool opened = m_file.open(path, reason);
    m_size = m_file.size();
    return opened;
}

HeaderBlock HeaderFile::read(const std::string& what, std::int64_t offset,
                             std::int64_t length) const {
    if (offset < 0 || offset >= m_size)
        return {};
    const std::int64_t wanted = std::clamp<std::int64_t>(length, 0, m_size - offset);
    std::vector<std::byte> bytes(static_cast<std::size_t>(wanted));
    const std::int64_t arrived = m_file.readAt(offset, bytes.data(), wanted);
    if (arrived < wanted && m_fault.empty())
        m_fault = what + " at offset " + std::to_string(offset) + " cannot be read";
    bytes.resize(static_cast<std::size_t>(arrived));
    return HeaderBlock(std::move(bytes));
}

} // namespace kvsig
