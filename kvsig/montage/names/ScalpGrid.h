#pragma once

#include "kvsig/util/Export.h"

#include <cstdint>

namespace kvsig {

/// Where an electrode lies, as bits of ScalpGrid::nRegionBits. Rows between two regions carry the
/// bits of both neighbours (FC = frontal + central).
namespace region {
/// @{
/// One bit for each region.
inline constexpr std::int32_t midline = 0x001;
inline constexpr std::int32_t left = 0x002;
inline constexpr std::int32_t right = 0x004;
inline constexpr std::int32_t frontal = 0x008;
inline constexpr std::int32_t temporal = 0x010;
inline constexpr std::int32_t central = 0x020;
inline constexpr std::int32_t parietal = 0x040;
inline constexpr std::int32_t occipital = 0x080;
inline constexpr std::int32_t anteriorFrontal = 0x100;
inline constexpr std::int32_t circumference = 0x200; ///< the outer Fpz-T7-Oz ring
/// @}
} // namespace region

/// A scalp electrode: its name and its region bits.
struct ScalpGrid {
    const char* pszName;      ///< as in "Fp1"
    std::int32_t nRegionBits; ///< bits of region
};

inline constexpr int scalpGridCount = 78; ///< rows of Grid1020

/// The scalp electrodes of the 10-20 and 10-10 systems. Both naming generations stand side by side
/// (T3/T4/T5/T6 beside T7/T8/P7/P8), so that recordings labelled either way are recognised.
/// A row's index is what IndexOf1020() returns.
KVSIG_API extern const ScalpGrid Grid1020[scalpGridCount];

/// Row of `name` in Grid1020 (0-based, letter case ignored), or -1.
KVSIG_API int IndexOf1020(const char* name);

} // namespace kvsig
