#pragma once

#include "kvsig/kernel/OpenFinding.h"

#include <string>
#include <vector>

namespace kvsig::edf {

/// Everything odd in an EDF, EDF+ or BDF file that its bytes tell and that a reader need not notice
/// to read it: counts and lengths that disagree, record onsets that leave gaps, samples outside
/// their declared range, reversed ranges. Reads the whole file, one data record at a time; files
/// that a reader refuses are looked at as far as their header goes. No finding holds patient data.
/// `sampleBytes` is 2 (EDF) or 3 (BDF). Empty when the file cannot be opened.
[[nodiscard]] std::vector<OpenFinding> inspect(const std::string& path, int sampleBytes);

} // namespace kvsig::edf
