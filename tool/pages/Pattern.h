#pragma once

#include <string>
#include <string_view>

namespace kvsig::tool {

/// Puts a text in the place of a mark. Throws where the mark is not.
void fill(std::string& pattern, std::string_view mark, std::string_view text);

} // namespace kvsig::tool
