#pragma once

#include <string_view>

namespace kvsig::tool {

/// Whether a text is named like an electrode of the 10-20, 10-10 or 10-5 system, earlobes and
/// mastoids included: its place in letters, then "z" or a number. Letter case is ignored.
[[nodiscard]] bool isElectrodeName(std::string_view name);

} // namespace kvsig::tool
