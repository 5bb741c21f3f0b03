#pragma once

#include "kvsig/readers/CalendarTime.h"
#include "kvsig/readers/HeaderFile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kvsig::nk {

/// A waveform block: what was recorded without a pause.
struct WaveBlock {
    std::int64_t offset = 0;
    std::int64_t dataOffset = 0;
    std::int64_t end = 0; ///< where the next block begins, or the file ends
    int rate = 0;         ///< hertz
    std::int64_t tenths = 0;
    std::vector<int> codes; ///< of the channels
    CalendarTime start;     ///< without a date when unknown

    /// All channels and the mark word.
    [[nodiscard]] std::int64_t frameBytes() const {
        return 2 * (static_cast<std::int64_t>(codes.size()) + 1);
    }
    /// As its head says; may be more than are there.
    [[nodiscard]] std::int64_t saidFrames() const { return tenths * rate / 10; }
};

struct WaveBlocks {
    std::vector<WaveBlock> blocks; ///< in the order of the tables
    int controlBlocks = 0;
    std::string fault; ///< why they cannot be read; empty when they can
};

/// Follows the tables of a sample file (.EEG), which its head begins: headBytes + mostTableBytes of
/// it, or the whole file.
[[nodiscard]] WaveBlocks findWaveBlocks(const HeaderBlock& head, const HeaderFile& file);

} // namespace kvsig::nk
