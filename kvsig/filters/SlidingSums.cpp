#include "kvsig/filters/SlidingSums.h"

#include "kvsig/util/WideLoops.h"

#include <type_traits>

namespace kvsig {
namespace {

// Sums of neighbouring outputs do not depend on each other: a tile of them fills the vector
// registers while the taps go by outside, and keeps the order of additions of each. 64 floats are
// 4, 8 or 16 registers, by their width.
constexpr int tile = 64;

template <Fold fold>
[[gnu::always_inline]] inline float folded(const float* at, int j, int last) {
    if constexpr (fold == Fold::sum)
        return at[j] + at[last - j];
    else if constexpr (fold == Fold::difference)
        return at[j] - at[last - j];
    else
        return at[j];
}

template <Fold fold, int Count, typename Step>
[[gnu::always_inline]] inline void sumTile(const float* x, Step step, const float* h, int taps,
                                           float* out) {
    const int terms = fold == Fold::none ? taps : taps / 2;
    const int last = taps - 1;
    float sums[static_cast<std::size_t>(Count)] = {};
    for (int j = 0; j < terms; ++j)
        for (int i = 0; i < Count; ++i)
            sums[i] += folded<fold>(x + i * step, j, last) * h[j];
    if (fold == Fold::sum && taps % 2 != 0)
        for (int i = 0; i < Count; ++i)
            sums[i] += h[terms] * x[i * step + terms];
    for (int i = 0; i < Count; ++i)
        out[i] = sums[i];
}

template <Fold fold, typename Step>
[[gnu::always_inline]] inline void sumTiles(const float* x, Step step, const float* h, int taps,
                                            float* out, int count) {
    if (count < tile) {
        for (int k = 0; k < count; ++k)
            sumTile<fold, 1>(x + k * step, step, h, taps, out + k);
        return;
    }
    for (int k = 0; k <= count - tile; k += tile)
        sumTile<fold, tile>(x + k * step, step, h, taps, out + k);
    // The last tile begins among outputs that are there already, and makes them once more.
    const int rest = count - tile;
    sumTile<fold, tile>(x + rest * step, step, h, taps, out + rest);
}

template <typename Step>
[[gnu::always_inline]] inline void sumFolded(const float* x, Step step, const float* h, int taps,
                                             Fold fold, float* out, int count) {
    switch (fold) {
    case Fold::none:
        sumTiles<Fold::none>(x, step, h, taps, out, count);
        break;
    case Fold::sum:
        sumTiles<Fold::sum>(x, step, h, taps, out, count);
        break;
    case Fold::difference:
        sumTiles<Fold::difference>(x, step, h, taps, out, count);
        break;
    }
}

KVSIG_WIDE_LOOPS void sumAll(const float* x, const float* h, int taps, Fold fold, float* out,
                             int count) {
    sumFolded(x, std::integral_constant<std::ptrdiff_t, 1>{}, h, taps, fold, out, count);
}

KVSIG_WIDE_LOOPS void sumStepwise(const float* x, std::ptrdiff_t step, const float* h, int taps,
                                  Fold fold, float* out, int count) {
    sumFolded(x, step, h, taps, fold, out, count);
}

} // namespace

void slidingSums(const float* x, std::ptrdiff_t step, const float* h, int taps, Fold fold,
                 float* out, int count) {
    if (step == 1)
        sumAll(x, h, taps, fold, out, count);
    else
        sumStepwise(x, step, h, taps, fold, out, count);
}

} // namespace kvsig
