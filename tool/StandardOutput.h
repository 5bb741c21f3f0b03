#pragma once

#include <string>

namespace kvsig::tool {

/// Writes data to standard output.
void print(const std::string& text);

/// Brings what was printed to its goal; false with a complaint when something was lost.
[[nodiscard]] bool finishPrinting();

} // namespace kvsig::tool
