#pragma once

#include "kvsig/util/ProfileLines.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kvsig {

/// A montage as a file holds it: the content of an XML template, or the lines of a section.
using MontageContent = std::variant<std::string, std::vector<ProfileEntry>>;

/// The montage of that name from the first place that has it. Files that cannot be read are logged.
[[nodiscard]] std::optional<MontageContent> findMontage(const std::string& name);

} // namespace kvsig
