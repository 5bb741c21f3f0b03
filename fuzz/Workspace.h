#pragma once

#include "Input.h"
#include "support/TempDir.h"

#include <string>
#include <string_view>
#include <vector>

namespace kvsig::fuzz {

/// The folder that a target works in: the process's current one, and the only one where the library
/// looks for files of the user. Made at first use and kept, because inputs come by the thousand.
class Workspace {
  public:
    static Workspace& get();

    /// Writes a file for this input and returns its path.
    std::string write(std::string_view name, std::string_view bytes);
    /// Removes everything in the folder.
    void clear() const;
    [[nodiscard]] std::string path(std::string_view name) const { return m_dir.file(name); }

  private:
    Workspace();

    test::TempDir m_dir;
};

/// The files of one input while they are needed. The first is written under `fileName`, the others
/// under their own names; attribute text stays in memory. `path` is what is to be opened.
class WrittenInput {
  public:
    WrittenInput(std::string_view input, std::string_view fileName);
    ~WrittenInput();
    WrittenInput(const WrittenInput&) = delete;
    WrittenInput& operator=(const WrittenInput&) = delete;

    std::string path;
    std::string attributes; ///< empty without
};

} // namespace kvsig::fuzz
