#pragma once

#include "tool/Recording.h"

#include <string>
#include <vector>

namespace kvsig::tool {

/// An event of a recording, as the commands show it.
struct ListedEvent {
    int kind = 0;
    long sample = 0;       ///< at the common rate
    double seconds = 0.0;  ///< from the recording's start
    double duration = 0.0; ///< seconds
    std::string label;     ///< UTF-8, like the text
    std::string text;
};

/// The events of a recording in the order of their samples; of a pair, those of the first one.
/// Complains of what keeps some from being read.
[[nodiscard]] std::vector<ListedEvent> eventsOf(const Recording& recording);
/// Why events of a reader cannot be read, a sentence each; empty when all are.
[[nodiscard]] std::vector<std::string> lostEventsOf(IDataReader& reader);

} // namespace kvsig::tool
