#pragma once

#include <array>
#include <cstddef>

namespace kvsig::tool {

/// Samples are made in blocks of at most this many: the loops over a block have a length that the
/// compiler knows, and a block of every source stays in the processor's nearest cache.
inline constexpr std::size_t blockSize = 64;

using Block = std::array<float, blockSize>;

} // namespace kvsig::tool
