#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// How the platform writes paths, and the process's current folder.
namespace kvsig {

[[nodiscard]] bool isPathSeparator(char c);

/// Characters of the drive that `path` starts with; 0 where there are no drives.
[[nodiscard]] std::size_t driveLength(std::string_view path);

/// Makes a drive ("c:") the current one.
[[nodiscard]] bool enterDrive(const std::string& drive);

[[nodiscard]] bool enterFolder(const std::string& folder);

/// The current folder of a drive, 0 for the current drive; empty when it is unknown.
[[nodiscard]] std::string currentFolder(int drive);

} // namespace kvsig
