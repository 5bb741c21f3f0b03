#pragma once

#include <filesystem>
#include <system_error>

namespace kvsig::test {

/// Works in another current directory while it lives.
class InDirectory {
  public:
    explicit InDirectory(const std::filesystem::path& path) { std::filesystem::current_path(path); }
    ~InDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(m_before, ignored);
    }
    InDirectory(const InDirectory&) = delete;
    InDirectory& operator=(const InDirectory&) = delete;

  private:
    std::filesystem::path m_before = std::filesystem::current_path();
};

} // namespace kvsig::test
