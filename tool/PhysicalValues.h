#pragma once

#include "kvsig/kernel/IDataReader.h"

namespace kvsig::tool {

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

} // namespace kvsig::tool
