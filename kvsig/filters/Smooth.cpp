#include "kvsig/filters/Smooth.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace kvsig {

float* smooth(float* x, int n, int width) {
    if (!x || n < 1 || width < 1)
        return nullptr;
    const std::int64_t size = n;
    const std::int64_t half = std::min<std::int64_t>(width / 2, size - 1);
    const std::int64_t window = 2 * half + 1;

    std::unique_ptr<float[]> means(new (std::nothrow) float[static_cast<std::size_t>(n)]);
    const std::unique_ptr<double[]> tails(
        new (std::nothrow) double[static_cast<std::size_t>(window)]);
    if (!means || !tails)
        return nullptr;

    const auto sampleOrZero = [=](std::int64_t index) {
        return index >= 0 && index < size ? static_cast<double>(x[index]) : 0.0;
    };

    // The windows that begin within one stretch of `window` samples are each a tail of that stretch
    // and a head of the next one. So every sum comes from two additions and no subtraction, and
    // rounding errors do not pile up as they do when a sum is dragged along.
    for (std::int64_t begin = 0; begin < size; begin += window) {
        const std::int64_t first = begin - half; // the first sample of the first window
        double tail = 0.0;
        for (std::int64_t i = window - 1; i >= 0; --i) {
            tail += sampleOrZero(first + i);
            tails[static_cast<std::size_t>(i)] = tail;
        }
        double head = 0.0;
        for (std::int64_t i = 0; i < window && begin + i < size; ++i) {
            const std::int64_t centre = begin + i;
            const std::int64_t count =
                std::min(centre + half, size - 1) - std::max<std::int64_t>(centre - half, 0) + 1;
            means[static_cast<std::size_t>(centre)] = static_cast<float>(
                (tails[static_cast<std::size_t>(i)] + head) / static_cast<double>(count));
            head += sampleOrZero(first + window + i);
        }
    }
    return means.release();
}

} // namespace kvsig
