#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace kvsig {

/// The bytes of a small regular file (UTF-8 path). Empty, with `reason` if given, when it cannot be
/// opened or read whole or is longer than `mostBytes`.
[[nodiscard]] std::optional<std::string> readTextFile(const char* path, std::size_t mostBytes,
                                                      std::string* reason = nullptr);

} // namespace kvsig
