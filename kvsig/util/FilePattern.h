#pragma once

#include <string_view>

namespace kvsig {

/// Whether a file name fits one of the patterns of a file dialog, which ';' separates: '*' stands
/// for any characters, '?' for one, a final '.' for a name without an ending. ASCII letter case is
/// ignored.
[[nodiscard]] bool fitsFilePattern(std::string_view fileName, std::string_view patterns);

} // namespace kvsig
