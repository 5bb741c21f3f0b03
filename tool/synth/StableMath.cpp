#include "tool/synth/StableMath.h"

#include <cmath>

namespace kvsig::tool {

double stableSin(double x) {
    x -= 2 * pi * std::floor(x / (2 * pi) + 0.5);
    if (x > pi / 2)
        x = pi - x;
    else if (x < -pi / 2)
        x = -pi - x;
    double term = x;
    double sum = x;
    for (int n = 2; n < 20; n += 2) {
        term *= -x * x / (n * (n + 1.0));
        sum += term;
    }
    return sum;
}

double stableCos(double x) { return stableSin(x + pi / 2); }

double stableExp(double x) {
    if (x < -700)
        return 0;
    // exp(x) = exp(x / 2^10)^(2^10): the series converges at once and squaring is exact enough.
    constexpr int halvings = 10;
    const double small = x / (1 << halvings);
    double term = 1;
    double sum = 0;
    for (int n = 1; n < 16; ++n) {
        sum += term;
        term *= small / n;
    }
    for (int i = 0; i < halvings; ++i)
        sum *= sum;
    return sum;
}

} // namespace kvsig::tool
