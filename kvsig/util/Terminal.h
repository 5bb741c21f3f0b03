#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

/// Whether standard error goes to a terminal, so that somebody may be watching progress there.
[[nodiscard]] KVSIG_API bool errorStreamIsTerminal();

} // namespace kvsig
