#include "tool/plot/EventMarks.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kvsig::tool {
namespace {

constexpr int mostLanes = 6;
constexpr std::size_t longestText = 48; // characters
constexpr double characterWidth = 0.56; // of the text size: a little above the usual
constexpr double textGap = 1.5;         // mm between texts
constexpr double besideLine = 0.6;      // mm between line and text
constexpr double finestMarks = 0.1;     // mm; closer ones are one line

bool startsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }

std::size_t characters(const std::string& utf8) {
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), startsCharacter));
}

// One line, cut to a length that can stand beside others.
std::string shortened(std::string text) {
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == '\x7F'; }, ' ');
    if (characters(text) <= longestText)
        return text;
    std::size_t seen = 0, end = 0;
    for (; end < text.size(); ++end)
        if (startsCharacter(text[end]) && ++seen == longestText)
            break;
    return text.substr(0, end) + "…";
}

std::string textOf(const ListedEvent& event) {
    return shortened(event.label.empty() ? event.text : event.text + " (" + event.label + ")");
}

} // namespace

// From the right to the left, each text above those that it would reach into: the line of an event
// then crosses no text of an earlier one.
EventMarks placeEvents(const std::vector<ListedEvent>& events, double start, double duration,
                       double traceWidth) {
    EventMarks placed;
    std::array<double, mostLanes> laneStart;
    laneStart.fill(traceWidth + textGap);
    double lastX = traceWidth + 1.0;
    const double end = start + duration;
    for (auto event = events.rbegin(); event != events.rend(); ++event) {
        const double until = event->seconds + std::max(event->duration, 0.0);
        // What touches only the page's right end belongs to the next one.
        if (!(event->seconds < end) || !(until > start || event->seconds >= start))
            continue;
        EventMark mark;
        mark.begins = event->seconds >= start;
        mark.from = std::max(event->seconds, start);
        mark.to = std::min(until, end);
        const double x = (mark.from - start) / duration * traceWidth;
        const std::string text = textOf(*event);
        mark.textWidth = std::min(
            static_cast<double>(characters(text)) * characterWidth * eventTextSize, traceWidth);
        mark.textX = std::min(x + besideLine, traceWidth - mark.textWidth);
        int lane = mostLanes;
        while (lane > 0 && mark.textX + mark.textWidth + textGap <=
                               laneStart[static_cast<std::size_t>(lane - 1)])
            --lane;
        if (lane < mostLanes && !text.empty()) {
            mark.text = text;
            mark.lane = lane;
            laneStart[static_cast<std::size_t>(lane)] = std::min(x, mark.textX);
            placed.lanes = std::max(placed.lanes, lane + 1);
        } else if (!text.empty()) {
            ++placed.left;
        }
        if (mark.text.empty() && mark.to == mark.from && lastX - x < finestMarks)
            continue;
        lastX = x;
        placed.marks.push_back(std::move(mark));
    }
    return placed;
}

} // namespace kvsig::tool
