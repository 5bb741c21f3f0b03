#pragma once

#include "kvsig/util/Export.h"

#include <optional>
#include <string_view>

namespace kvsig::edf {

/// The time-keeping onset of a data record: the annotation signal's bytes in the record begin with
/// "+<seconds>" or "-<seconds>" and a byte 0x14. In seconds from the start time of the header;
/// empty when the bytes do not begin so.
[[nodiscard]] KVSIG_API std::optional<double> recordOnset(std::string_view annotationBytes);

} // namespace kvsig::edf
