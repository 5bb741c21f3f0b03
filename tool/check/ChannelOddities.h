#pragma once

#include "tool/Recording.h"

#include <vector>

namespace kvsig::tool {

/// What is odd about an open recording's channels, whatever its format: names that are missing,
/// twice or not text, unknown units, ranges implausible for their unit.
[[nodiscard]] std::vector<OpenFinding> channelOddities(const Recording& recording);

} // namespace kvsig::tool
