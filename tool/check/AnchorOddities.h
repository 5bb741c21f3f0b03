#pragma once

#include "kvsig/kernel/DataReader.h"

#include <vector>

namespace kvsig::tool {

/// Gaps and overlaps between the anchors of an open recording, which is shown as if there were
/// none: the first twenty, then how many more. Places are in seconds from its first anchor.
[[nodiscard]] std::vector<OpenFinding> anchorOddities(DataReader& recording);

} // namespace kvsig::tool
