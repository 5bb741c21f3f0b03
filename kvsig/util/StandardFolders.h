#pragma once

#include <string>

/// Folders of the system, as UTF-8 paths; empty where they cannot be told.
namespace kvsig {

/// Where programs keep a user's settings ($XDG_CONFIG_HOME, else ~/.config).
[[nodiscard]] std::string userConfigFolder();

/// The folder of the file that this code was loaded from: the shared library's.
[[nodiscard]] std::string libraryFolder();

} // namespace kvsig
