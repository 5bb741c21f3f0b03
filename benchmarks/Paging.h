#pragma once

#include <array>
#include <cstdint>
#include <utility>

namespace kvsig::bench {

/// The page that a reviewer looks at: 18 bipolar rows of a made recording, by channel numbers. Its
/// first channels are Fp1 Fp2 F7 F3 Fz F4 F8 T3 C3 Cz C4 T4 T5 P3 Pz P4 T6 O1 O2.
inline constexpr std::array<std::pair<int, int>, 18> pagingRows{{
    {0, 2},
    {2, 7},
    {7, 12},
    {12, 17},
    {0, 3},
    {3, 8},
    {8, 13},
    {13, 17},
    {4, 9},
    {9, 14},
    {1, 5},
    {5, 10},
    {10, 15},
    {15, 18},
    {1, 6},
    {6, 11},
    {11, 16},
    {16, 18},
}};

inline constexpr double pageSeconds = 10.0;

/// Hertz; the notch is 2 Hz wide at -3 dB.
inline constexpr double pagingHighPass = 1.0;
inline constexpr double pagingLowPass = 70.0;
inline constexpr double pagingNotch = 60.0;
inline constexpr double pagingNotchHalfWidth = 1.0;

/// Pages in the first hour.
[[nodiscard]] constexpr std::int64_t pagingPages(double duration) {
    return static_cast<std::int64_t>((duration < 3600.0 ? duration : 3600.0) / pageSeconds);
}

} // namespace kvsig::bench
