#include "kvsig/readers/HeaderBlock.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace kvsig {

namespace {

std::string_view textOf(const std::vector<std::byte>& bytes) {
    return {static_cast<const char*>(static_cast<const void*>(bytes.data())), bytes.size()};
}

} // namespace

HeaderBlock::HeaderBlock(std::vector<std::byte> bytes)
    : m_bytes(std::move(bytes)), m_holdsNul(textOf(m_bytes).find('\0') != std::string_view::npos) {}

HeaderBlock HeaderBlock::readFrom(const File& file, std::int64_t length) {
    const std::int64_t wanted = std::clamp<std::int64_t>(length, 0, file.size());
    std::vector<std::byte> bytes(static_cast<std::size_t>(wanted));
    bytes.resize(static_cast<std::size_t>(file.readAt(0, bytes.data(), wanted)));
    return HeaderBlock(std::move(bytes));
}

std::string_view viewHeaderField(const HeaderBlock& header, std::int64_t offset, int width) {
    const std::string_view text = textOf(header.bytes());
    if (offset < 0 || width <= 0 || std::cmp_greater_equal(offset, text.size()))
        return {};
    const std::string_view field =
        text.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(width));
    // Looked for once in all of a header: most have none, and this is done for each of its fields.
    const std::string_view ended = header.holdsNul() ? field.substr(0, field.find('\0')) : field;
    return ended.substr(0, ended.find_last_not_of(' ') + 1);
}

std::string readHeaderField(const HeaderBlock& header, std::int64_t offset, int width) {
    return std::string(viewHeaderField(header, offset, width));
}

} // namespace kvsig
