#include "kvsig/readers/HeaderBlock.h"

#include <algorithm>
#include <utility>

namespace kvsig {

HeaderBlock HeaderBlock::readFrom(const File& file, std::int64_t length) {
    const std::int64_t wanted = std::clamp<std::int64_t>(length, 0, file.size());
    std::vector<std::byte> bytes(static_cast<std::size_t>(wanted));
    bytes.resize(static_cast<std::size_t>(file.readAt(0, bytes.data(), wanted)));
    return HeaderBlock(std::move(bytes));
}

std::string_view viewHeaderField(const HeaderBlock& header, std::int64_t offset, int width) {
    const auto& bytes = header.bytes();
    if (offset < 0 || width <= 0 || std::cmp_greater_equal(offset, bytes.size()))
        return {};
    const auto begin = static_cast<std::size_t>(offset);
    const char* const text =
        static_cast<const char*>(static_cast<const void*>(bytes.data())) + begin;
    const std::size_t held = std::min(static_cast<std::size_t>(width), bytes.size() - begin);
    const std::string_view field(text, held);
    const std::string_view ended = field.substr(0, field.find('\0'));
    return ended.substr(0, ended.find_last_not_of(' ') + 1);
}

std::string readHeaderField(const HeaderBlock& header, std::int64_t offset, int width) {
    return std::string(viewHeaderField(header, offset, width));
}

} // namespace kvsig
