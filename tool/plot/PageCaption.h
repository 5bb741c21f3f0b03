#pragma once

#include "tool/Recording.h"
#include "tool/SignalOptions.h"

#include <string>

namespace kvsig::tool {

/// What a page shows: the file (of a pair, both), the montage, and the reference asked for where it
/// is the rows' `reference`.
[[nodiscard]] std::string titleText(const Recording& recording, const MontageChoice& montage,
                                    const std::string& reference);

/// How a page is to be read: sensitivity (microvolts per millimetre; 0: no row has the common one),
/// speed (millimetres per second) and filters.
[[nodiscard]] std::string captionText(double sensitivity, double speed,
                                      const SignalOptions& signals);

} // namespace kvsig::tool
