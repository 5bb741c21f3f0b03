#include "kvsig/filters/Convolve.h"

#include "kvsig/filters/SlidingSums.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

namespace kvsig {

float* convolve(float* x, int n, float* const h, int nh, int step, int sign, int symmetric,
                int* outCount) {
    if (outCount)
        *outCount = 0;
    if (!x || !h || step < 1 || nh < 0)
        return nullptr;
    const auto capacity = static_cast<std::size_t>(std::max(n, 0) / step) + 1;
    auto* const out = new (std::nothrow) float[capacity];
    if (!out)
        return nullptr;
    const int count = n < nh ? 0 : saturate<int>((std::int64_t{n} - nh) / step + 1);
    const Fold fold = symmetric == 0 ? Fold::none : sign < 0 ? Fold::difference : Fold::sum;
    slidingSums(x, step, h, nh, fold, out, count);
    std::fill(out + count, out + capacity, 0.0F);
    if (outCount)
        *outCount = count;
    return out;
}

} // namespace kvsig
