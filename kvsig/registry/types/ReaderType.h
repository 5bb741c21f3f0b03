#pragma once

#include <cstdint>

namespace kvsig {

/// The number of a recording format. Bits 0-23 are the format; the bits above carry what the
/// constants below say.
using ReaderType = std::int32_t;

inline constexpr ReaderType noReaderType = 0;    ///< no format
inline constexpr ReaderType interleavedType = 1; ///< raw frames
inline constexpr ReaderType layoutType = 13;     ///< text layouts, *.lay
inline constexpr ReaderType snapshotType = 39;   ///< raw frames, SnapshotData
inline constexpr ReaderType pushableType = 43;   ///< raw frames that the host pushes
inline constexpr ReaderType xmlLayoutType = 45;  ///< XML layouts, *.kvx

/// Asks KrnlGetFileTypeName() for the whole display name.
inline constexpr ReaderType wholeTypeName = 0x10000000;
/// Value of bits 24-31 that marks a synchronised pair.
inline constexpr ReaderType pairMarker = 0x20000000;

/// Whether a type stands for a synchronised pair.
[[nodiscard]] constexpr bool isPairType(ReaderType type) {
    return (static_cast<std::uint32_t>(type) & 0xFF000000U) == pairMarker;
}
/// The composite type of a pair of two formats of at most 12 bits.
[[nodiscard]] constexpr ReaderType pairType(ReaderType first, ReaderType second) {
    return pairMarker | (first & 0xFFF) << 12 | (second & 0xFFF);
}
/// The format of a pair's first recording.
[[nodiscard]] constexpr ReaderType firstOfPair(ReaderType pair) { return pair >> 12 & 0xFFF; }
/// The format of a pair's second recording.
[[nodiscard]] constexpr ReaderType secondOfPair(ReaderType pair) { return pair & 0xFFF; }

/// A layout names the recording's data file and its type; it is not a recording itself.
[[nodiscard]] constexpr bool isLayoutType(ReaderType type) {
    return type == layoutType || type == xmlLayoutType;
}

} // namespace kvsig
