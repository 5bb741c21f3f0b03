#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace kvsig {

/// A scale as the sum of two floats: of its 53 digits the first 24, and the next.
struct FloatScale {
    float high = 0.0F;
    float low = 0.0F;

    /// The first product is not rounded before the second one is added.
    [[nodiscard, gnu::always_inline]] float times(float raw) const {
        return std::fma(raw, high, raw * low);
    }
};

/// From raw counts to the kernel's values: raw * scale, or for channels of type 100
/// ((raw - digitalLow) * (physioHigh - physioLow) / (digitalHigh - digitalLow) + physioLow) *
/// scale. Computed in double precision and rounded to float once.
struct ValueMap {
    bool linear = false; ///< the type-100 form
    double digitalLow = 0.0;
    double digitalSpan = 1.0;
    double physioLow = 0.0;
    double physioSpan = 1.0;
    double scale = 1.0;
    const FloatScale* floats = nullptr; ///< gives the same as `scale`, when not linear; or null
};

enum class RawCode { native16, native32, little16, little24 };

/// Raw samples of one channel as they lie in memory: blocks of `samples` samples, each of which
/// shows as `points` values: value j of a block is that of sample floor(j * samples / points). The
/// run is the `count` values from value `first` of the first block on.
struct RawRun {
    RawCode code = RawCode::native16;
    const std::byte* bytes = nullptr; ///< of the first block's first sample
    std::int64_t step = 0;            ///< bytes from a sample to the next one
    std::int64_t blockStep = 0;       ///< bytes from a block to the next one
    std::int64_t samples = 1;         ///< at most `points`; below it samples are repeated
    std::int64_t points = 1;
    std::int64_t first = 0; ///< below `points`
    std::int64_t count = 0;
};

/// Stores the run's values in `out`, or adds them to it.
void mapValues(const RawRun& run, const ValueMap& map, bool accumulate, float* out);

/// Copies the run's raw counts.
void copyRaw(const RawRun& run, std::int32_t* out);

} // namespace kvsig
