#pragma once

#include <cstdint>

namespace kvsig::tool {

/// Random numbers that are the same on every machine: SplitMix64 (Steele, Lea, Flood 2014), a
/// counter put through a mixing function. Streams of one seed are independent of each other, so
/// that a change in one part of the recording leaves the others as they are.
class Random {
  public:
    Random(std::uint64_t seed, std::uint64_t stream) : m_counter(mixed(seed + step * stream)) {}

    std::uint64_t bits() { return mixed(m_counter += step); }

    /// In [low, high).
    double uniform(double low, double high) {
        return low + (high - low) * static_cast<double>(bits() >> 11U) * 0x1p-53;
    }

    /// Mean 0, variance 1, near enough to the normal distribution for noise that is filtered
    /// afterwards: the sum of four 16-bit numbers, each of variance (2^32 - 1) / 12.
    float gaussian() {
        const std::uint64_t b = bits();
        const auto sum = static_cast<std::int32_t>((b & 0xFFFFU) + (b >> 16U & 0xFFFFU) +
                                                   (b >> 32U & 0xFFFFU) + (b >> 48U));
        return static_cast<float>(sum - 2 * 0xFFFF) * (1.0F / 37837.227F);
    }

  private:
    static constexpr std::uint64_t step = 0x9E3779B97F4A7C15U;

    static std::uint64_t mixed(std::uint64_t z) {
        z = (z ^ z >> 30U) * 0xBF58476D1CE4E5B9U;
        z = (z ^ z >> 27U) * 0x94D049BB133111EBU;
        return z ^ z >> 31U;
    }

    std::uint64_t m_counter;
};

} // namespace kvsig::tool
