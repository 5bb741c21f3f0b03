#pragma once

#include "tool/EventList.h"

#include <string>
#include <vector>

namespace kvsig::tool {

/// An event on a page.
struct EventMark {
    double from = 0.0;   ///< seconds from the recording's start, on the page
    double to = 0.0;     ///< the same as `from` for a moment
    bool begins = false; ///< its begin is on the page
    std::string text;    ///< empty when there is no room for it
    int lane = 0;        ///< the line of text above the traces in which it stands, from 0 below
    double textX = 0.0;  ///< left end of the text, in millimetres from the left end of the traces
    double textWidth = 0.0; ///< at most, in millimetres
};

struct EventMarks {
    std::vector<EventMark> marks;
    int lanes = 0;        ///< lines of text in use
    std::size_t left = 0; ///< events without a text for want of room
};

inline constexpr double eventTextSize = 2.5; // mm
inline constexpr double eventLaneHeight = 3.3;

/// Places the events of a page: as many lines of text as are needed for none to lie over another,
/// six at the most.
[[nodiscard]] EventMarks placeEvents(const std::vector<ListedEvent>& events, double start,
                                     double duration, double traceWidth);

} // namespace kvsig::tool
