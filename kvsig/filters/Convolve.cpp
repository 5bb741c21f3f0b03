#include "kvsig/filters/Convolve.h"

#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

namespace kvsig {
namespace {

// Adds up `terms` products for each of `count` outputs. `term(at, j)` gives the sample, or pair of
// samples, that belongs to h[j] for the output whose first sample is `at`. Sums of neighbouring
// outputs do not depend on each other: computing a tile of them together fills the vector unit and
// keeps the order of additions of each.
template <int Tile, typename Step, typename Term>
int sumTiles(const float* x, Step step, const float* h, int terms, Term term, float* out, int begin,
             int count) {
    int k = begin;
    for (; count - k >= Tile; k += Tile) {
        const float* const at = x + std::ptrdiff_t{k} * step;
        float sums[std::size_t{Tile}] = {};
        for (int j = 0; j < terms; ++j)
            for (int i = 0; i < Tile; ++i)
                sums[i] += term(at + i * step, j) * h[j];
        std::copy_n(sums, Tile, out + k);
    }
    return k;
}

template <typename Step, typename Term>
void sumProducts(const float* x, Step step, const float* h, int terms, Term term, float* out,
                 int count) {
    const int done = sumTiles<32>(x, step, h, terms, term, out, 0, count);
    sumTiles<1>(x, step, h, terms, term, out, done, count);
}

template <typename Step>
void convolveInto(float* out, int count, const float* x, const float* h, int nh, Step step,
                  int sign, bool symmetric) {
    if (!symmetric) {
        sumProducts(
            x, step, h, nh, [](const float* at, int j) { return at[j]; }, out, count);
        return;
    }
    const int half = nh / 2;
    const int last = nh - 1;
    if (sign < 0) {
        sumProducts(
            x, step, h, half, [last](const float* at, int j) { return at[j] - at[last - j]; }, out,
            count);
        return;
    }
    sumProducts(
        x, step, h, half, [last](const float* at, int j) { return at[j] + at[last - j]; }, out,
        count);
    if (nh % 2 != 0)
        for (int k = 0; k < count; ++k)
            out[k] += h[half] * x[std::ptrdiff_t{k} * step + half];
}

} // namespace

float* convolve(float* x, int n, float* const h, int nh, int step, int sign, int symmetric,
                int* outCount) {
    if (outCount)
        *outCount = 0;
    if (!x || !h || step < 1 || nh < 0)
        return nullptr;
    const auto capacity = static_cast<std::size_t>(std::max(n, 0) / step) + 1;
    auto* const out = new (std::nothrow) float[capacity]();
    if (!out || n < nh)
        return out;
    const int count = saturate<int>((std::int64_t{n} - nh) / step + 1);
    if (step == 1)
        convolveInto(out, count, x, h, nh, std::integral_constant<std::ptrdiff_t, 1>{}, sign,
                     symmetric != 0);
    else
        convolveInto(out, count, x, h, nh, std::ptrdiff_t{step}, sign, symmetric != 0);
    if (outCount)
        *outCount = count;
    return out;
}

} // namespace kvsig
