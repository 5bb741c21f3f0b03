#pragma once

/// Functions that give the same bits on every machine, which the system's do not promise: only
/// additions, multiplications and divisions in a fixed order. Good to about 1e-12 in the ranges
/// that occur here; for setting up, not for inner loops.
namespace kvsig::tool {

inline constexpr double pi = 3.14159265358979323846;

/// For |x| up to about 1e6.
[[nodiscard]] double stableSin(double x);
[[nodiscard]] double stableCos(double x);
/// For |x| up to 700; 0 below.
[[nodiscard]] double stableExp(double x);

} // namespace kvsig::tool
