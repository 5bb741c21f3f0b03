#pragma once

#include <cstddef>
#include <vector>

namespace kvsig::tool {

/// Where things stand on the page, in millimetres from its top left corner.
struct PageLayout {
    /// `aboveTraces` is room for what stands between caption and traces.
    explicit PageLayout(std::size_t rows, double aboveTraces = 0.0);

    double width = 297.0;
    double height = 0.0;
    double left = 27.0; ///< the traces' area
    double right = 287.0;
    double top = 17.0;
    double bottom = 0.0;
    double rowSpacing = 0.0;

    [[nodiscard]] double traceWidth() const { return right - left; }
    [[nodiscard]] double rowCentre(std::size_t row) const;
};

/// Vertical lines of a page, in seconds.
struct TimeGrid {
    TimeGrid(double duration, double traceWidth);

    double major;      ///< labelled lines: a second, or more when the page is long
    double minor;      ///< fine lines, 200 ms on a page of seconds; 0 when they would run together
    double labelEvery; ///< a multiple of major, wide enough for a clock time
};

/// The sensitivity of the usual list (then its tenfold, and so on) at which a signal of that
/// peak-to-peak size stays within `room` millimetres.
[[nodiscard]] double fittingSensitivity(double peakToPeak, double room);

/// The length of a scale bar in microvolts: 1, 2 or 5 times a power of ten, about 8 mm long.
[[nodiscard]] double scaleBarLength(double sensitivity);

/// The middle one of the values; 0 when there are none.
[[nodiscard]] double median(std::vector<double> values);

} // namespace kvsig::tool
