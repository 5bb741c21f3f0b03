#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace kvsig::test {

/// A fresh, empty directory of its own, removed with all that is in it when the test ends.
class TempDir {
  public:
    TempDir() {
        std::random_device entropy;
        for (int attempt = 0; attempt < 100; ++attempt) {
            m_path = std::filesystem::temp_directory_path() /
                     ("kvsig-test-" + std::to_string(entropy()) + std::to_string(entropy()));
            if (std::filesystem::create_directory(m_path))
                return;
        }
        throw std::runtime_error("no temporary directory");
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    /// The path of a file in the directory, whether it exists or not.
    [[nodiscard]] std::string file(std::string_view name) const { return (m_path / name).string(); }

    /// Writes a file and returns its path.
    std::string write(std::string_view name, std::string_view bytes) const {
        std::ofstream stream(m_path / name, std::ios::binary);
        stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!stream.flush())
            throw std::runtime_error("cannot write " + file(name));
        return file(name);
    }

    /// The bytes of a file; empty when it does not exist.
    [[nodiscard]] std::string read(std::string_view name) const {
        std::ifstream stream(m_path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

  private:
    std::filesystem::path m_path;
};

} // namespace kvsig::test
