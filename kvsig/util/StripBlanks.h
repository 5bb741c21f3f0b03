#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

/// Removes the spaces at the end of `text` (spaces only, no tabs) in place and returns it.
KVSIG_API char* StripBlanks(char* text);

} // namespace kvsig
