#pragma once

#include "kvsig/util/Export.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kvsig {

/// Bytes that one page may take; a larger one is refused and its samples read as zeros.
inline constexpr std::int64_t maxPageBytes = std::int64_t{1} << 30;

/// Storage of raw samples. Freshly allocated bytes are not zeroed: who fills a page zeroes the
/// rest.
class KVSIG_API PageBuffer {
  public:
    /// Makes room for `bytes` bytes, keeping nothing. False when that is over maxPageBytes or
    /// memory runs out; the buffer is then empty.
    bool reserve(std::int64_t bytes);
    [[nodiscard]] std::int64_t capacity() const { return m_capacity; }
    [[nodiscard]] std::byte* data() { return m_bytes.get(); }
    [[nodiscard]] const std::byte* data() const { return m_bytes.get(); }

  private:
    std::unique_ptr<std::byte[]> m_bytes;
    std::int64_t m_capacity = 0;
};

/// A page of raw samples, frame by frame: sample index major, channel minor.
struct DataPage {
    std::int32_t start = 0; ///< first sample index, a multiple of the page length
    std::int32_t end = -1;  ///< last sample index, inclusive
    PageBuffer buffer;      ///< 2 or 4 bytes per value, in the machine's byte order
    bool complete = false;  ///< the whole page was read and ends before the recording does
};

} // namespace kvsig
