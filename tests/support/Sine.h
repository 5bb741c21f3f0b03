#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace kvsig {

/// `count` samples of a sine of amplitude 1, `frequency` in cycles per sample.
inline std::vector<float> sine(double frequency, std::size_t count) {
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float>(
            std::sin(2.0 * std::numbers::pi * frequency * static_cast<double>(i)));
    return samples;
}

/// Amplitude of the part of `samples` from `first` on that has `frequency`; exact when that part is
/// a whole number of periods.
template <typename Sample>
double amplitudeAt(double frequency, const std::vector<Sample>& samples, std::size_t first,
                   std::size_t count) {
    double re = 0.0;
    double im = 0.0;
    for (std::size_t i = first; i < first + count; ++i) {
        const double angle = 2.0 * std::numbers::pi * frequency * static_cast<double>(i);
        re += static_cast<double>(samples.at(i)) * std::cos(angle);
        im += static_cast<double>(samples.at(i)) * std::sin(angle);
    }
    return 2.0 * std::hypot(re, im) / static_cast<double>(count);
}

} // namespace kvsig
