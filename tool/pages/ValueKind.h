#pragma once

#include "tool/OptionTable.h"

#include <string>
#include <vector>

namespace kvsig::tool {

/// What a shell can offer for an option's value.
enum class ValueKind { other, choice, file, type, montage };

[[nodiscard]] ValueKind valueKind(const OptionRow& row);

/// The names of the types that this build reads.
[[nodiscard]] std::vector<std::string> readableTypes();

} // namespace kvsig::tool
