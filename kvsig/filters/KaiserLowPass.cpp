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

// Modified Bessel function of the first kind and order 0, by its power series. A sum beyond the
// range of a double ends it as well: the terms would grow for ever.
double besselI0(double x) {
    const double half = x / 2.0;
    double sum = 1.0;
    double term = half;
    int k = 1;
    do {
        sum += term * term;
        ++k;
        term = term * half / k;
    } while (term > 1e-7 && std::isfinite(sum));
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
