#pragma once

#include <cstddef>
#include <cstdint>

/// Little-endian loads and stores of a file's bytes, whatever the machine's own order.
namespace kvsig {

[[nodiscard]] inline std::int16_t loadLittle16(const std::byte* bytes) {
    return static_cast<std::int16_t>(std::to_integer<std::uint16_t>(bytes[0]) |
                                     std::to_integer<std::uint16_t>(bytes[1]) << 8);
}

/// 24-bit two's complement, sign-extended.
[[nodiscard]] inline std::int32_t loadLittle24(const std::byte* bytes) {
    const std::uint32_t value = std::to_integer<std::uint32_t>(bytes[0]) |
                                std::to_integer<std::uint32_t>(bytes[1]) << 8 |
                                std::to_integer<std::uint32_t>(bytes[2]) << 16;
    return static_cast<std::int32_t>(value << 8) >> 8;
}

inline void storeLittle16(std::byte* bytes, std::int16_t value) {
    const auto bits = static_cast<std::uint16_t>(value);
    bytes[0] = static_cast<std::byte>(bits & 0xFFU);
    bytes[1] = static_cast<std::byte>(bits >> 8);
}

} // namespace kvsig
