#pragma once

#include "kvsig/readers/HeaderBlock.h"

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

/// A format writes its header down as a table of these fields; what reads them and what tells of
/// them in sentences is the same for all. `base` is where the record with the field begins.
namespace kvsig {

/// A little-endian number.
template <typename Number>
struct NumberField {
    const char* name; ///< as sentences call it
    std::int64_t offset;
};

/// Text of fixed width, ended by a NUL or by its width.
struct TextField {
    const char* name;
    std::int64_t offset;
    int width;
};

/// The number's bytes; those that the block does not hold count as 0.
template <typename Number>
[[nodiscard]] Number valueOf(const HeaderBlock& block, NumberField<Number> field,
                             std::int64_t base = 0) {
    static_assert(std::is_arithmetic_v<Number>);
    const auto& bytes = block.bytes();
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        const std::int64_t place = base + field.offset + static_cast<std::int64_t>(i);
        if (place >= 0 && static_cast<std::uint64_t>(place) < bytes.size())
            bits |= std::to_integer<std::uint64_t>(bytes[static_cast<std::size_t>(place)])
                    << (8 * i);
    }
    if constexpr (std::same_as<Number, float>)
        return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    else if constexpr (std::same_as<Number, double>)
        return std::bit_cast<double>(bits);
    else
        return static_cast<Number>(bits);
}

[[nodiscard]] inline std::string valueOf(const HeaderBlock& block, TextField field,
                                         std::int64_t base = 0) {
    return readHeaderField(block, base + field.offset, field.width);
}

/// "number of channels (offset 310) is 0". `base` counts in the block, `blockOffset` is the block's
/// own place in the file.
template <std::integral Number>
[[nodiscard]] std::string sentenceOf(const HeaderBlock& block, NumberField<Number> field,
                                     std::int64_t base = 0, std::int64_t blockOffset = 0) {
    return std::string(field.name) + " (offset " +
           std::to_string(blockOffset + base + field.offset) + ") is " +
           std::to_string(valueOf(block, field, base));
}

/// "version (offset 0) is "Version 2.0"", with a question mark for each byte outside ASCII.
[[nodiscard]] inline std::string sentenceOf(const HeaderBlock& block, TextField field,
                                            std::int64_t base = 0) {
    std::string text = valueOf(block, field, base);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return std::string(field.name) + " (offset " + std::to_string(base + field.offset) + ") is \"" +
           text + "\"";
}

} // namespace kvsig
