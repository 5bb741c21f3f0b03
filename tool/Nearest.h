#pragma once

#include <string>
#include <vector>

namespace kvsig::tool {

/// The names most like `wanted`, best first, at most three.
[[nodiscard]] std::vector<std::string> nearestNames(const std::string& wanted,
                                                    const std::vector<std::string>& names);

} // namespace kvsig::tool
