#pragma once

#include "kvsig/util/OutputFile.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace kvsig::tool {

/// Where a command's data goes: a file, written beside its name and renamed when complete, or
/// standard output.
class Output {
  public:
    /// An empty path or "-" is standard output. False, with error() set, when it cannot be written.
    bool open(const std::string& path);
    bool write(std::string_view data);
    /// Writes at a position from the start of the data. Standard output receives the whole at
    /// commit(), through an unnamed temporary file. Not to be mixed with write() behind it.
    bool writeAt(std::int64_t offset, const void* data, std::size_t bytes);
    bool commit();

    /// "PATH: reason" of the first failure.
    [[nodiscard]] std::string error() const;

  private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    bool toStdout(const char* data, std::size_t bytes);
    bool copySpool();

    std::string m_path;
    OutputFile m_file;
    std::unique_ptr<std::FILE, CloseFile> m_spool; ///< random-access data on its way to stdout
    bool m_standard = false;
    bool m_failed = false;
};

} // namespace kvsig::tool
