#pragma once

#include <string_view>

namespace kvsig::fuzz {

/// Ends the process with the contract's text on standard error when it does not hold: a fuzzer and
/// a test runner both take that for a crash and keep the input.
void check(bool holds, std::string_view contract);

} // namespace kvsig::fuzz
