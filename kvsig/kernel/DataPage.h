#pragma once

#include "kvsig/util/Limits.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace kvsig {

/// Storage of raw samples. Fresh memory is zero and costs nothing until it is written: a short
/// recording whose header claims a huge sampling rate has pages of a gigabyte with a few samples in
/// them.
class PageBuffer {
  public:
    /// Makes room for `bytes` bytes; what a buffer large enough holds stays in it. False when that
    /// is over maxPageBytes or memory runs out; the buffer is then empty.
    bool reserve(std::int64_t bytes);
    /// Says that the bytes before `end` are going to be written.
    void use(std::int64_t end) { m_used = std::max(m_used, end); }
    /// Zeroes the bytes from `begin` up to `end`, as far as they were ever used.
    void zero(std::int64_t begin, std::int64_t end);
    [[nodiscard]] std::int64_t capacity() const { return m_capacity; }
    [[nodiscard]] std::byte* data() { return m_bytes.get(); }
    [[nodiscard]] const std::byte* data() const { return m_bytes.get(); }

  private:
    struct Free {
        void operator()(std::byte* bytes) const { std::free(bytes); }
    };
    std::unique_ptr<std::byte[], Free> m_bytes;
    std::int64_t m_capacity = 0;
    std::int64_t m_used = 0; ///< from here on the bytes are as the system gave them: zero
};

/// The order in which a page holds its raw samples.
enum class PageKind {
    frames,  ///< sample index major, channel minor; in the machine's byte order
    planes,  ///< channel major, sample index minor; in the machine's byte order
    records, ///< as they stand in the file
};

/// A page of raw samples.
struct DataPage {
    std::int32_t start = 0; ///< first sample index, a multiple of the page length
    std::int32_t end = -1;  ///< last sample index, inclusive
    PageKind kind = PageKind::frames;
    PageBuffer buffer;        ///< of frames and planes: 2 or 4 bytes per value
    std::int64_t samples = 0; ///< that were there when it was read; behind them are zeros
    bool complete = false;    ///< the whole page was read and ends before the recording does

    std::vector<bool> loadedPlanes; ///< by channel; of a page of planes only

    // Of a page of records only. It holds one channel alone until a second one is asked for, and
    // may lose its samples while it keeps its place in the cache.
    std::int64_t records = 0;  ///< that the file holds for the page; behind them are zeros
    int firstChannel = -1;     ///< the channel that was asked for first; -1: no samples are there
    bool everyChannel = false; ///< whole records; otherwise that channel's samples alone
    bool lostSamples = false;  ///< it had samples; they went to make room
    std::uint64_t lastUse = 0; ///< larger is later
};

} // namespace kvsig
