#pragma once

#include "tool/Rows.h"
#include "tool/SignalOptions.h"
#include "tool/plot/Canvas.h"
#include "tool/plot/EventMarks.h"
#include "tool/plot/PageLayout.h"
#include "tool/plot/TraceReducer.h"

#include <vector>

namespace kvsig::tool {

/// What a page shows.
struct PageContent {
    const Recording* recording;
    const Rows* rows;
    const std::vector<TraceReducer>* traces; ///< one for each row
    const EventMarks* events;
    SampleRange range;
    const SignalOptions* signals;
    double sensitivity; ///< microvolts per millimetre of the rows in microvolts
};

/// Draws the page as an EEG reader expects it: negative up, rows evenly spaced, labels left, second
/// and 200 ms lines, clock times below, a scale bar in microvolts, and a caption with sensitivity
/// and filters. Events are thin lines through all rows, their texts above the traces. Rows in other
/// units, and the ECG, have a scale of their own and stand positive up.
void drawPage(Canvas& canvas, const PageLayout& layout, const PageContent& content);

/// Whether a row is drawn at the page's sensitivity, or at a scale of its own; gaps at neither.
[[nodiscard]] bool hasCommonScale(const Row& row);
[[nodiscard]] bool hasOwnScale(const Row& row);

} // namespace kvsig::tool
