#pragma once

#include "tool/Selection.h"

#include <string>
#include <vector>

namespace kvsig::tool {

/// The layout of interleaved 16-bit data: how to read it, what its channels are called, when it
/// starts, and if asked for who was recorded. Names that a channel map cannot hold are changed.
[[nodiscard]] std::string layoutText(const Selection& selection, double calibration,
                                     const std::string& dataPath, bool showPatient);

/// A sentence for each name that the layout changes by more than the reference behind it.
[[nodiscard]] std::vector<std::string> changedNames(const Selection& selection);

} // namespace kvsig::tool
