#pragma once

#include <string_view>
#include <vector>

namespace kvsig::fuzz {

/// Ends the process with the contract's text on standard error when it does not hold: a fuzzer and
/// a test runner both take that for a crash and keep the input.
void check(bool holds, std::string_view contract);

/// Whether all are equal; what is no number equals itself here.
[[nodiscard]] bool sameValues(const std::vector<float>& a, const std::vector<float>& b);

} // namespace kvsig::fuzz
