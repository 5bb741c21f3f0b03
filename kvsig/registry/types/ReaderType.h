#pragma once

#include <cstdint>

namespace kvsig {

/// The number of a recording format. Bits 0-23 are the format; the bits above carry what the
/// constants below say.
using ReaderType = std::int32_t;

inline constexpr ReaderType noReaderType = 0;
inline constexpr ReaderType interleavedType = 1;
inline constexpr ReaderType layoutType = 13;
inline constexpr ReaderType snapshotType = 39;
inline constexpr ReaderType pushableType = 43;
inline constexpr ReaderType xmlLayoutType = 45;

/// Asks KrnlGetFileTypeName() for the whole display name.
inline constexpr ReaderType wholeTypeName = 0x10000000;
/// Value of bits 24-31 that marks a synchronised pair.
inline constexpr ReaderType pairMarker = 0x20000000;

[[nodiscard]] constexpr bool isPairType(ReaderType type) {
    return (static_cast<std::uint32_t>(type) & 0xFF000000U) == pairMarker;
}
/// The composite type of a pair of two formats of at most 12 bits.
[[nodiscard]] constexpr ReaderType pairType(ReaderType first, ReaderType second) {
    return pairMarker | (first & 0xFFF) << 12 | (second & 0xFFF);
}
[[nodiscard]] constexpr ReaderType firstOfPair(ReaderType pair) { return pair >> 12 & 0xFFF; }
[[nodiscard]] constexpr ReaderType secondOfPair(ReaderType pair) { return pair & 0xFFF; }

/// A layout names the recording's data file and its type; it is not a recording itself.
[[nodiscard]] constexpr bool isLayoutType(ReaderType type) {
    return type == layoutType || type == xmlLayoutType;
}

} // namespace kvsig
