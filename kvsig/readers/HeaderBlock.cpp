#include "kvsig/readers/HeaderBlock.h"

#include <algorithm>
#include <utility>

namespace kvsig {

HeaderBlock HeaderBlock::readFrom(const File& file, std::int64_t length) {
    return readFrom(file, 0, length);
}

HeaderBlock HeaderBlock::readFrom(const File& file, std::int64_t offset, std::int64_t length) {
    const std::int64_t size = file.size();
    if (offset < 0 || offset >= size)
        return {};
    const std::int64_t wanted = std::clamp<std::int64_t>(length, 0, size - offset);
    std::vector<std::byte> bytes(static_cast<std::size_t>(wanted));
    bytes.resize(static_cast<std::size_t>(file.readAt(offset, bytes.data(), wanted)));
    return HeaderBlock(std::move(bytes));
}

std::string readHeaderField(const HeaderBlock& header, std::int64_t offset, int width) {
    const auto& bytes = header.bytes();
    if (offset < 0 || width <= 0 || std::cmp_greater_equal(offset, bytes.size()))
        return {};
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
    const auto end = begin + std::min<std::ptrdiff_t>(width, bytes.end() - begin);
    std::string text;
    for (auto byte = begin; byte != end && *byte != std::byte{0}; ++byte)
        text.push_back(static_cast<char>(*byte));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

} // namespace kvsig
