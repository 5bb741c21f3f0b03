#pragma once

#include "kvsig/util/Export.h"

#include <vector>

namespace kvsig {

/// One entry of a reader's path list.
struct PathInfo {
    char path[261] = ""; ///< cut to 260 characters
};

/// Splits a list of paths at ';'. Empty entries are left out, long ones cut to 260 characters.
[[nodiscard]] KVSIG_API std::vector<PathInfo> splitPaths(const char* text);

} // namespace kvsig
