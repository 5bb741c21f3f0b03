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

/// Whether what stands at an offset may be an event table: its type is one and it fits the file.
[[nodiscard]] bool isTableAt(const HeaderFile& file, std::int64_t offset);

[[nodiscard]] EventTable readTable(const HeaderFile& file, const TablePlace& place);

} // namespace kvsig::neuroscan
