#pragma once

#include "tool/Selection.h"

#include <string>

namespace kvsig::tool {

/// The layout of interleaved 16-bit data: how to read it, what its channels are called, when it
/// starts, and if asked for who was recorded. Names that a channel map cannot hold are changed.
[[nodiscard]] std::string layoutText(const Selection& selection, double calibration,
                                     const std::string& dataPath, bool showPatient);

} // namespace kvsig::tool
