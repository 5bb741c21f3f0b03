#include "tool/PhysicalValues.h"

#include <cmath>

namespace kvsig::tool {
bool rangeIsStated(IDataReader& reader, int channel) {
    const double calibration = reader.calibration(channel);
    const double digitalSpan =
        static_cast<double>(reader.digitalHigh(channel)) - reader.digitalLow(channel);
    const double ofRange = (reader.physioHigh(channel) - reader.physioLow(channel)) / digitalSpan;
    return std::abs(ofRange - calibration) <= 1e-9 * std::abs(calibration);
}

// The kernel multiplies the physical value of a type-100 channel by the calibration once more; the
// gain undoes that. Of the other types it leaves out a constant.
PhysicalMap physicalMapOf(IDataReader& reader, int channel) {
    const double calibration = reader.calibration(channel);
    const bool otherUnit = reader.channelType(channel) == otherUnitType;
    PhysicalMap map;
    if (otherUnit && calibration != 0.0 && std::isfinite(calibration))
        map.gain = 1.0 / calibration;
    // Equal physical limits of a type-100 channel: every sample has that one value, which the
    // kernel's zeros leave out.
    const bool kernelLeavesItOut = !otherUnit || calibration == 0.0;
    if (kernelLeavesItOut && rangeIsStated(reader, channel))
        map.offset = reader.physioLow(channel) - reader.digitalLow(channel) * calibration;
    return map;
}

std::optional<CountMap> countMapOf(IDataReader& reader, int channel) {
    CountMap map;
    map.digitalLow = reader.digitalLow(channel);
    map.digitalSpan = reader.digitalHigh(channel) - map.digitalLow;
    map.physioLow = reader.physioLow(channel);
    map.physioSpan = reader.physioHigh(channel) - map.physioLow;
    const bool defined = map.digitalSpan != 0.0 && rangeIsStated(reader, channel);
    return defined ? std::optional(map) : std::nullopt;
}

} // namespace kvsig::tool
