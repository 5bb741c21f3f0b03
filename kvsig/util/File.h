#pragma once

#include "kvsig/util/Export.h"

#include <cstdint>
#include <string>

namespace kvsig {

/// A regular file open for reading at any position. Owns its handle; movable, not copyable.
/// One object is used from one thread at a time; several may be open on the same file.
class KVSIG_API File {
  public:
    File() = default;
    ~File();
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Opens `path` (UTF-8) and closes what was open before. Only a regular file opens: a directory
    /// or a pipe is refused without blocking. On failure `reason`, if given, says why in words.
    bool open(const char* path, std::string* reason = nullptr);
    void close();
    [[nodiscard]] bool isOpen() const { return m_handle >= 0; }

    /// The length in bytes as it is now; 0 when closed.
    [[nodiscard]] std::int64_t size() const;

    /// Reads up to `bytes` bytes at `offset` (from the start of the file) into `dest` and returns
    /// how many arrived: fewer at the end of the file or on a read error, 0 for negative arguments.
    std::int64_t readAt(std::int64_t offset, void* dest, std::int64_t bytes) const;

  private:
    int m_handle = -1;
};

} // namespace kvsig
