#pragma once

#include "kvsig/kernel/DataReader.h"

#include <vector>

namespace kvsig::tool {

/// Gaps and overlaps between the anchors of an open recording, which is shown as if there were
/// none: the first twenty, then how many more. Places are in seconds from its first anchor. What
/// the steps and the drift of clocks explain is none. Of other makers' recordings gaps alone: their
/// readers tell overlaps.
[[nodiscard]] std::vector<OpenFinding> anchorOddities(DataReader& recording);

} // namespace kvsig::tool
