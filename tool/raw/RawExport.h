#pragma once

#include "tool/LongWork.h"
#include "tool/Rows.h"

#include <string>

namespace kvsig::tool {

struct RawExportOptions {
    std::string output; ///< the data file; the layout stands beside it with the ending ".lay"
    bool filtered = false;
    bool showPatient = false;
};

/// Writes rows as interleaved 16-bit data and the layout that describes it; says what is lost.
/// False with a complaint when it failed or was interrupted; then neither file is replaced.
[[nodiscard]] bool exportRaw(const Recording& recording, const Rows& rows, SampleRange range,
                             const RawExportOptions& options, LongWork& work);

/// Where the layout of a data file stands.
[[nodiscard]] std::string layoutPathFor(const std::string& dataPath);

} // namespace kvsig::tool
