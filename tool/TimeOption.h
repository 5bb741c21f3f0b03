#pragma once

#include <string>

namespace kvsig::tool {

/// Reads a time as options take it: seconds or [d:]h:m:s, both with a fraction if wanted (two
/// fields are minutes and seconds). False for anything else, negative times included.
[[nodiscard]] bool readTime(const std::string& text, double& seconds);

} // namespace kvsig::tool
