#pragma once

#include "kvsig/readers/EdfHeader.h"
#include "kvsig/util/File.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kvsig::edf {

/// The time-keeping onset of a data record: the annotation signal's bytes in the record begin with
/// "+<seconds>" or "-<seconds>" and a byte 0x14. In seconds from the start time of the header;
/// empty when the bytes do not begin so.
[[nodiscard]] std::optional<double> recordOnset(std::string_view annotationBytes);

/// To the microsecond: "2907 s".
[[nodiscard]] std::string secondsText(double seconds);

/// Seconds by which onsets that are so many records apart may miss the grid of records unnoticed:
/// they are written with few decimals, and so is the records' duration.
[[nodiscard]] double onsetTolerance(const Header& header, std::int64_t records);

/// Seconds by which the last whole data record begins later than the first one's onset and the
/// number of records between say (negative: earlier): what the gaps of the recording add up to.
/// 0 within the tolerance, and where the onset of either record cannot be told. Reads a few bytes
/// of both.
[[nodiscard]] double lastOnsetShift(const File& file, const Header& header, int sampleBytes);

} // namespace kvsig::edf
