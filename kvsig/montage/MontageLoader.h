#pragma once

#include "kvsig/util/ProfileLines.h"

#include <string>
#include <string_view>
#include <vector>

namespace kvsig {

class IDataReader;
class SourceMontage;

/// `text` with its electrode names in the generation that the recording uses.
[[nodiscard]] std::string translatedFor(IDataReader& reader, std::string_view text);

/// Fills an empty montage from the lines of a profile section: each key is a definition, its value
/// the display name, empty for the derivation's own. Averages come first. Returns 1, or 0 without a
/// reader.
int loadMontageEntries(SourceMontage& montage, const std::vector<ProfileEntry>& entries);

/// Fills an empty montage from the content of a template and returns the count of sources that its
/// elements made. What is no XML makes none and is logged.
int loadMontageXML(SourceMontage& montage, const std::string& text);

} // namespace kvsig
