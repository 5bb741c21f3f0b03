#include "StraightFilters.h"

#include <algorithm>

namespace kvsig::bench {
namespace {

// Neighbouring outputs side by side: enough of them to fill the vector unit.
constexpr std::int64_t tile = 64;

void firTile(const float* half, std::int64_t taps, const float* x, float* out) {
    float sums[tile] = {};
    for (std::int64_t j = 0; j < taps / 2; ++j)
        for (std::int64_t i = 0; i < tile; ++i)
            sums[i] += (x[i + j] + x[i + taps - 1 - j]) * half[j];
    for (std::int64_t i = 0; i < tile; ++i)
        out[i] = sums[i] + half[taps / 2] * x[i + taps / 2];
}

float firSample(const float* half, std::int64_t taps, const float* x) {
    float sum = 0.0F;
    for (std::int64_t j = 0; j < taps / 2; ++j)
        sum += (x[j] + x[taps - 1 - j]) * half[j];
    return sum + half[taps / 2] * x[taps / 2];
}

} // namespace

void straightFirstOrder(const Recurrence& weights, float* data, std::int64_t count) {
    if (count < 1)
        return;
    const auto [b0, b1, b2, a1, a2] = weights;
    float x1 = data[0];
    float y1 = data[0];
    for (std::int64_t i = 1; i < count; ++i) {
        const float x = data[i];
        y1 = b0 * x + b1 * x1 + a1 * y1;
        x1 = x;
        data[i] = y1;
    }
}

void straightSecondOrder(const Recurrence& weights, float* data, std::int64_t count) {
    if (count < 2)
        return;
    const auto [b0, b1, b2, a1, a2] = weights;
    float x2 = data[0];
    float x1 = data[1];
    float y2 = x2;
    float y1 = x1;
    for (std::int64_t i = 2; i < count; ++i) {
        const float x = data[i];
        const float y = b0 * x + b1 * x1 + b2 * x2 + a1 * y1 + a2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        data[i] = y;
    }
}

void straightFir(const float* half, std::int64_t taps, const float* x, std::int64_t count,
                 float* out) {
    const std::int64_t margin = taps / 2;
    const std::int64_t results = count - taps + 1;
    std::fill_n(out, margin, 0.0F);
    std::int64_t k = 0;
    for (; k + tile <= results; k += tile)
        firTile(half, taps, x + k, out + margin + k);
    for (; k < results; ++k)
        out[margin + k] = firSample(half, taps, x + k);
    std::fill_n(out + margin + results, margin, 0.0F);
}

} // namespace kvsig::bench
