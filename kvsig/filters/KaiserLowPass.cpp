#include "kvsig/filters/KaiserLowPass.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace kvsig {
namespace {

// The window's shape parameter for an attenuation in dB; J. F. Kaiser, "Nonrecursive digital
// filter design using the I0-sinh window function" (1974).
double kaiserBeta(double attenuation) {
    const double a = std::fabs(attenuation);
    if (a > 50.0)
        return 0.1102 * (a - 8.7);
    if (a >= 21.0)
        return 0.5842 * std::pow(a - 21.0, 0.4) + 0.07886 * (a - 21.0);
    return 0.0;
}

// Modified Bessel function of the first kind and order 0 by its asymptotic expansion (Abramowitz
// and Stegun 9.7.1), which is exact to the last digits for the arguments that it is used for.
double largeBesselI0(double x) {
    double sum = 1.0;
    double term = 1.0;
    for (int k = 1; term > 1e-17; ++k) {
        const double odd = 2.0 * k - 1.0;
        term *= odd * odd / (8.0 * k * x);
        sum += term;
    }
    return sum * std::exp(x) / std::sqrt(2.0 * std::numbers::pi * x);
}

// The same function, usually by its power series. Windows of hundreds of dB over millions of taps
// would take it many seconds.
double besselI0(double x) {
    constexpr double largestForSeries = 40.0; // the window of some 370 dB
    if (x > largestForSeries)
        return largeBesselI0(x);
    const double half = x / 2.0;
    double sum = 1.0;
    double term = half;
    int k = 1;
    do {
        sum += term * term;
        ++k;
        term = term * half / k;
    } while (term > 1e-7);
    return sum;
}

} // namespace

std::vector<float> kaiserLowPass(int taps, double cutoff, double attenuation) {
    const double beta = kaiserBeta(attenuation);
    const double peak = besselI0(beta);
    if (!std::isfinite(peak))
        return {};

    const int middle = taps / 2;
    const bool odd = taps % 2 != 0;
    std::vector<float> weights(static_cast<std::size_t>(middle) + 1);
    if (odd)
        weights.back() = static_cast<float>(2.0 * cutoff);
    for (int i = 1; i <= middle; ++i) {
        const double x = odd ? i : i - 0.5;
        const double r = x / (taps * 0.5);
        const double window = besselI0(beta * std::sqrt(1.0 - r * r));
        const double weight =
            std::sin(2.0 * std::numbers::pi * cutoff * x) * window / (x * peak * std::numbers::pi);
        weights[static_cast<std::size_t>(middle - i)] = static_cast<float>(weight);
    }
    return weights;
}

} // namespace kvsig
