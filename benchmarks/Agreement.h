#pragma once

#include "Workload.h"

#include <string>
#include <vector>

namespace kvsig::bench {

/// Compares what is measured: this library and the straight loops must give the same floats, up to
/// float rounding. Whole recordings, all channels at once and one by one, are compared, the pages
/// of the first workload, and the filters, which must agree bit by bit. Gives one sentence per
/// disagreement.
[[nodiscard]] std::vector<std::string> disagreements(const std::vector<Workload>& workloads);

} // namespace kvsig::bench
