#include "tool/plot/PageLayout.h"

#include "kvsig/filters/DisplayDefaults.h"

#include <algorithm>
#include <cmath>

namespace kvsig::tool {
namespace {

constexpr double tallestPage = 1000.0; // mm; a picture of it stays below 64 MiB
constexpr double bottomMargin = 17.0;
constexpr double belowTraces = 3.5; // for what reaches below the lowest row, as above the highest
constexpr double clockWidth = 17.0; // mm that a clock text takes, with a gap
constexpr double finestLines = 1.5; // mm between lines that still read as lines

double spacingFor(std::size_t rows) {
    if (rows <= 8)
        return 16.0;
    if (rows <= 32)
        return 8.5;
    return rows <= 64 ? 6.0 : 4.5;
}

double niceStep(double atLeast) {
    for (const double step :
         {0.01, 0.02,  0.05,  0.1,   0.2,    0.5,    1.0,    2.0,    5.0,     10.0,    20.0,   30.0,
          60.0, 120.0, 300.0, 600.0, 1200.0, 1800.0, 3600.0, 7200.0, 14400.0, 21600.0, 43200.0})
        if (step >= atLeast)
            return step;
    return 86400.0 * std::ceil(atLeast / 86400.0);
}

} // namespace

PageLayout::PageLayout(std::size_t rows, double aboveTraces) {
    top += aboveTraces;
    const auto count = static_cast<double>(std::max<std::size_t>(rows, 1));
    rowSpacing =
        std::min(spacingFor(rows), (tallestPage - top - belowTraces - bottomMargin) / count);
    bottom = top + rowSpacing * count + belowTraces;
    height = bottom + bottomMargin;
}

double PageLayout::rowCentre(std::size_t row) const {
    return top + rowSpacing * (static_cast<double>(row) + 0.5);
}

TimeGrid::TimeGrid(double duration, double traceWidth) {
    const double secondsPerMm = duration / traceWidth;
    const double finest =
        duration < 2.0 ? duration / 10.0 : 1.0; // a page of seconds has second lines
    major = niceStep(std::max(finest, secondsPerMm * finestLines * 2.0));
    labelEvery = niceStep(std::max(major, secondsPerMm * clockWidth));
    minor = major == 1.0 && 0.2 >= secondsPerMm * finestLines ? 0.2 : 0.0;
}

double fittingSensitivity(double peakToPeak, double room) {
    const double wanted = peakToPeak / room;
    if (!std::isfinite(wanted))
        return 1.0;
    for (double decade = 1.0;; decade *= 1000.0)
        for (const float value : GetDefValsSensitivity())
            if (value * decade >= wanted)
                return value * decade;
}

double scaleBarLength(double sensitivity) {
    const double wanted = 9.0 * sensitivity;
    const double decade = std::pow(10.0, std::floor(std::log10(wanted)));
    for (const double step : {10.0, 5.0, 2.0})
        if (step * decade <= wanted * 1.2)
            return step * decade;
    return decade;
}

double median(std::vector<double> values) {
    if (values.empty())
        return 0.0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace kvsig::tool
