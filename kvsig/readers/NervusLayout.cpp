#include "kvsig/readers/NervusLayout.h"

namespace kvsig::nervus {

std::string guidAt(const HeaderBlock& block, std::int64_t offset) {
    constexpr int order[] = {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    constexpr const char* digits = "0123456789ABCDEF";
    std::string text = "{";
    for (const int place : order) {
        if (place < 0) {
            text += '-';
            continue;
        }
        const auto byte = valueOf(block, NumberField<std::uint8_t>{"", place}, offset);
        text += digits[byte / 16];
        text += digits[byte % 16];
    }
    return text + "}";
}

} // namespace kvsig::nervus
