#pragma once

#include "kvsig/util/File.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kvsig {

/// A stretch of a file, most often its start, held in memory. What the file does not hold reads as
/// zeros.
class HeaderBlock {
  public:
    HeaderBlock() = default;
    explicit HeaderBlock(std::vector<std::byte> bytes);

    /// Reads the first `length` bytes of the file, or as many as there are.
    static HeaderBlock readFrom(const File& file, std::int64_t length);

    [[nodiscard]] const std::vector<std::byte>& bytes() const { return m_bytes; }
    [[nodiscard]] bool holdsNul() const { return m_holdsNul; }

  private:
    std::vector<std::byte> m_bytes;
    bool m_holdsNul = false;
};

/// The text of a fixed-width field: `width` bytes at `offset`, up to the first NUL, without
/// trailing blanks. Bytes that the block does not hold count as NUL. A view lies in the block.
[[nodiscard]] std::string_view viewHeaderField(const HeaderBlock& header, std::int64_t offset,
                                               int width);
[[nodiscard]] std::string readHeaderField(const HeaderBlock& header, std::int64_t offset,
                                          int width);

} // namespace kvsig
