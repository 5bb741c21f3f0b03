#include "kvsig/montage/FilterDesign.h"

#include "kvsig/filters/Filter.h"

#include <cmath>
#include <numbers>

namespace kvsig {

namespace {

bool isPositive(double value) { return std::isfinite(value) && value > 0; }

} // namespace

bool isFilterOn(FilterAttr attr) { return attr.use && isPositive(attr.cutoff); }

int designFilter(Filter& filter, FilterAttr attr, double samplingRate) {
    if (!(samplingRate > 0) || !isPositive(attr.cutoff))
        return 0;
    return filter.design(attr.cutoff / samplingRate, attr.second / samplingRate, attr.third);
}

// The filter is the bilinear transform of (s^2 + t^2) / ((s + u)^2 + t^2), t = tan(pi f / rate),
// whose half width is u on the warped axis; around f that axis is stretched by
// pi / rate * (1 + t^2).
double notchWidthFrequency(double cutoff, double halfWidth, double samplingRate) {
    if (!(samplingRate > 0))
        return halfWidth;
    constexpr double pi = std::numbers::pi;
    const double t = std::tan(pi * cutoff / samplingRate);
    return samplingRate / pi * std::atan(pi * halfWidth / samplingRate * (1.0 + t * t));
}

} // namespace kvsig
