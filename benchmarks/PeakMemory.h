#pragma once

#include "Question.h"

namespace kvsig::bench {

/// Bytes of memory that the work takes at its peak, from opening on, beside the buffers that the
/// caller holds for the results; measured by one run in a child process. Negative when that fails.
[[nodiscard]] long peakMemory(const Contender& contender);

} // namespace kvsig::bench
