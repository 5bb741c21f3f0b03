#pragma once

#include <string>
#include <vector>

namespace kvsig::tool {

/// Rows of cells in columns as wide as their content, for a terminal: numbers stand right, texts
/// left.
[[nodiscard]] std::string tableText(std::vector<std::vector<std::string>> rows,
                                    const std::vector<bool>& rightAligned);

} // namespace kvsig::tool
