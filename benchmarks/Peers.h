#pragma once

#include "FilterCase.h"
#include "Reading.h"
#include "StraightLanes.h"

#include <vector>

namespace kvsig::bench {

/// The peers that were found when this was built.
[[nodiscard]] std::vector<Reader> peerReaders();
[[nodiscard]] std::vector<Contender> peerFilters(const FilterCase& filter);
[[nodiscard]] std::vector<Contender> peerPagers(const std::string& path, const PagingChain& chain);

} // namespace kvsig::bench
