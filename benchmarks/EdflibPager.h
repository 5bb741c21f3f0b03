#pragma once

#include "Question.h"
#include "StraightLanes.h"

#include <string>

namespace kvsig::bench {

/// The page as a host would put it together from libraries of others: EDFlib reads the channels,
/// each once, and the filters of liquid-dsp run over their differences, which are the rows. Every
/// page has the library's own run-in, so that both do the same work.
[[nodiscard]] Contender edflibPager(const std::string& path, const PagingChain& chain);

} // namespace kvsig::bench
