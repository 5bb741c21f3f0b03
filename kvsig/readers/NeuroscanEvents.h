#pragma once

#include "kvsig/readers/FlatRecording.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kvsig::neuroscan {

/// Where the event table stands, and what its places count in.
struct TablePlace {
    std::int64_t offset = 0; ///< of the table in the file
    std::int64_t data = 0;   ///< of the first sample
    std::int64_t frameBytes = 0;
    std::int64_t frames = 0; ///< samples of the recording
};

struct EventTable {
    std::vector<FlatEvent> events;     ///< those inside the recording
    std::vector<std::string> oddities; ///< one sentence each
};

/// What the header says of where the event table stands.
struct TableOffset {
    std::int64_t lower = 0;  ///< 32 bits of the offset
    std::int64_t upper = 0;  ///< those above, in files of more than 4 GiB
    std::int64_t data = 0;   ///< of the first sample
    std::int64_t values = 0; ///< samples of all channels by their number; 0 where it has none
};

/// The offset of the event table of a file of `size` bytes; -1 when the header gives none. The
/// number of samples, where the lower bits bear it out, is a surer witness than the upper bits: of
/// a long file these may be wrong, and of one that was cut they may still be true.
[[nodiscard]] std::int64_t offsetOf(const TableOffset& table, std::int64_t size);

/// Whether what stands at an offset may be an event table: its type is one and it fits the file.
[[nodiscard]] bool isTableAt(const HeaderFile& file, std::int64_t offset);

[[nodiscard]] EventTable readTable(const HeaderFile& file, const TablePlace& place);

} // namespace kvsig::neuroscan
