#include "kvsig/util/Utf16.h"

#include <cstdint>

namespace kvsig {
namespace {

constexpr char32_t replacement = 0xFFFD;

bool isHighHalf(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowHalf(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void appendUtf8(std::string& text, char32_t point) {
    const auto tail = [&](int shift) {
        text.push_back(static_cast<char>(0x80U | (point >> shift & 0x3FU)));
    };
    if (point < 0x80) {
        text.push_back(static_cast<char>(point));
    } else if (point < 0x800) {
        text.push_back(static_cast<char>(0xC0U | point >> 6));
        tail(0);
    } else if (point < 0x10000) {
        text.push_back(static_cast<char>(0xE0U | point >> 12));
        tail(6);
        tail(0);
    } else {
        text.push_back(static_cast<char>(0xF0U | point >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace

std::string textOfUtf16(std::span<const std::byte> bytes) {
    const std::size_t units = bytes.size() / 2;
    const auto unitAt = [&](std::size_t i) -> char32_t {
        return i < units ? std::to_integer<char32_t>(bytes[2 * i]) |
                               std::to_integer<char32_t>(bytes[2 * i + 1]) << 8
                         : 0;
    };
    std::string text;
    for (std::size_t i = 0; i < units && unitAt(i) != 0; ++i) {
        const char32_t unit = unitAt(i);
        if (isHighHalf(unit) && isLowHalf(unitAt(i + 1))) {
            appendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (unitAt(i + 1) - 0xDC00));
            ++i;
        } else {
            appendUtf8(text, isHighHalf(unit) || isLowHalf(unit) ? replacement : unit);
        }
    }
    return text;
}

} // namespace kvsig
