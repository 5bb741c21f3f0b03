#pragma once

#include "kvsig/kernel/IDataReader.h"

#include <cstdint>
#include <optional>

namespace kvsig::tool {

/// The type of channels in other units than microvolts.
inline constexpr short otherUnitType = 100;

/// What turns the kernel's values of a recorded channel into the physical ones that its format
/// defines: value * gain + offset.
struct PhysicalMap {
    double gain = 1.0;
    double offset = 0.0;
};
[[nodiscard]] PhysicalMap physicalMapOf(IDataReader& reader, int channel);

/// Whether the channel's physical and digital limits are its calibration's; where the format states
/// no limits they are the kernel's defaults and say nothing.
[[nodiscard]] bool rangeIsStated(IDataReader& reader, int channel);

/// The format's own formula, from a count to the physical value: nothing is lost between them, as
/// it would be where a large constant is added to a value that is a float already.
struct CountMap {
    double digitalLow = 0.0;
    double digitalSpan = 1.0;
    double physioLow = 0.0;
    double physioSpan = 1.0;

    [[nodiscard]] double valueOf(std::int32_t count) const {
        return (count - digitalLow) * physioSpan / digitalSpan + physioLow;
    }
};
/// None where the limits are not the channel's own, or are equal digital ones.
[[nodiscard]] std::optional<CountMap> countMapOf(IDataReader& reader, int channel);

} // namespace kvsig::tool
