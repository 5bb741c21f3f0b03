#pragma once

#include <string>

namespace kvsig::tool {

/// The fewest decimals, at most 15, that write `value` exactly as it was given.
[[nodiscard]] int fewestDecimals(double value);

/// `value` in the shortest form without an exponent, which EDF headers do not know.
[[nodiscard]] std::string plainNumber(double value);

} // namespace kvsig::tool
