#pragma once

#include "kvsig/util/Export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kvsig {

/// A file that appears under its name only when it is complete.
///
/// The bytes go to a temporary file beside the target, which commit() renames over it; without
/// commit() the destructor removes the temporary and the old file stays as it was. A target that
/// is no regular file (/dev/null, a FIFO, /dev/stdout wherever it leads) is written through at
/// once, since nothing may be renamed over it. A symbolic link stays and its goal is replaced.
///
/// The first failure is kept: error() words it and every later call returns false.
/// One object is used from one thread at a time.
class KVSIG_API OutputFile {
  public:
    OutputFile() = default;
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Starts writing for `path` (UTF-8) and drops what was being written before.
    bool open(const char* path);

    /// Appends behind what was appended before. Nothing needs to be flushed by the caller.
    bool write(const void* data, std::size_t bytes);
    bool write(std::string_view text) { return write(text.data(), text.size()); }

    /// Writes at a byte position from the start of the file, before or behind its end; the place
    /// where write() goes on is not moved. Fails on a pipe or terminal.
    bool writeAt(std::int64_t offset, const void* data, std::size_t bytes);

    /// Brings everything to the file and puts it in the target's place. After failure the old
    /// target is whole. The object is closed either way.
    bool commit();

    /// Closes and removes the temporary. What went through to a device or pipe stays there.
    void discard();

    [[nodiscard]] bool isOpen() const { return m_handle >= 0; }

    /// Why it failed, in words without the path ("no space left on the disk"); empty when all is
    /// well. open() empties it.
    [[nodiscard]] const std::string& error() const { return m_error; }

  private:
    bool openThrough(const char* path);
    bool openBeside();
    bool flush();
    bool put(std::int64_t offset, const char* data, std::size_t bytes, bool append);
    bool fail(int code);
    void closeHandle();

    int m_handle = -1;
    bool m_through = false;
    bool m_replaces = false;
    std::int64_t m_end = 0; ///< bytes appended and flushed
    std::vector<char> m_pending;
    std::string m_target;
    std::string m_temporary; ///< empty when writing through
    std::string m_error;
};

} // namespace kvsig
