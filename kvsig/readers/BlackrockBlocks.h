#pragma once

#include "kvsig/readers/HeaderFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kvsig::blackrock {

/// What the data blocks of a file have in common.
struct BlockLayout {
    std::int64_t offset = 0; ///< of the first block
    bool wideStamps = false; ///< 64-bit time stamps (3.0), else 32-bit
    std::int64_t channels = 0;
    /// Blocks of one frame whose stamps are no further apart than this make one run; 0: none do.
    std::uint64_t longestStep = 0;

    [[nodiscard]] std::int64_t headBytes() const { return wideStamps ? 13 : 9; }
    [[nodiscard]] std::int64_t frameBytes() const { return 2 * channels; }
};

/// Frames without a pause: those of one block, or of many blocks of one frame each.
struct Run {
    std::int64_t offset = 0; ///< of the first block's head
    std::int64_t frames = 0;
    std::int64_t blocks = 0;
    std::uint64_t stamp = 0;     ///< of the first block
    std::uint64_t lastStamp = 0; ///< of the last block
    std::int64_t longSteps = 0;  ///< steps of more than 3/4 of the longest inside the run
};

/// Ends early when there are more than mostBlockRuns.
struct BlockScan {
    std::vector<Run> runs;
    std::vector<std::string> oddities; ///< one sentence each
};

/// Walks the blocks of a file to its end, or to where it is damaged.
[[nodiscard]] BlockScan scanBlocks(const HeaderFile& file, const BlockLayout& layout);

} // namespace kvsig::blackrock
