#pragma once

#include "tool/Recording.h"

#include <vector>

namespace kvsig::tool {

/// What is odd about the channels that a member of an open recording has, whatever its format:
/// names that are missing or not text, unknown units, ranges implausible for their unit.
[[nodiscard]] std::vector<OpenFinding> channelOddities(const Recording& recording,
                                                       DataReader* member);

/// Names that several channels have, of a pair in either member.
[[nodiscard]] std::vector<OpenFinding> twinOddities(const Recording& recording);

} // namespace kvsig::tool
