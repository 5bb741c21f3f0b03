#pragma once

#include "tool/Selection.h"

#include <string>
#include <vector>

namespace kvsig::tool {

/// How rows become 16-bit counts of one calibration.
struct RawScale {
    double calibration = 1.0;     ///< units per count
    std::vector<int> multipliers; ///< of the file's own counts, by row; empty: values are rounded
    std::vector<std::string> losses; ///< what does not survive, a sentence each

    [[nodiscard]] bool isExact() const { return !multipliers.empty(); }
};

/// The scale at which recorded 16-bit channels keep their counts, where their calibrations are
/// whole multiples of the smallest; else the finest at which the largest value of the range fits,
/// for which the range is read once. False when the work was interrupted.
[[nodiscard]] bool chooseRawScale(const Selection& selection, bool filtered, LongWork& work,
                                  RawScale& scale);

} // namespace kvsig::tool
