#pragma once

#include "kvsig/readers/EdfHeader.h"

#include <cstdint>
#include <string>

namespace kvsig::edf {

/// `name (offset 184) is "3792"`.
[[nodiscard]] std::string fieldText(const std::string& name, std::int64_t offset,
                                    const std::string& value);
[[nodiscard]] std::string headerLengthText(const Header& header);
/// Signals count from 1 in words, from 0 in `signal`.
[[nodiscard]] std::string samplesText(const Header& header, std::int64_t signal);

/// Why the header length is none: samples that start inside the header are no samples. Empty when
/// it is sound.
[[nodiscard]] std::string headerLengthFault(const Header& header);

/// The file signal of most samples in a record.
[[nodiscard]] std::int64_t largestSignal(const Header& header);

} // namespace kvsig::edf
