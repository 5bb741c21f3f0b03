#pragma once

#include "kvsig/kernel/OpenFinding.h"
#include "kvsig/readers/EdfHeader.h"
#include "kvsig/util/File.h"

#include <cstdint>
#include <string>
#include <vector>

/// What is odd in an EDF or BDF file. `sampleBytes` is 2 or 3. No finding holds patient data.
namespace kvsig::edf {

/// Of the fields of the header.
[[nodiscard]] std::vector<OpenFinding> headerOddities(const File& file, const Header& header,
                                                      int sampleBytes);

/// Of the data records: their number, their onsets and their samples. Reads the whole file, one
/// record at a time.
[[nodiscard]] std::vector<OpenFinding> recordOddities(const File& file, const Header& header,
                                                      int sampleBytes);

} // namespace kvsig::edf
