#include "tool/pages/Pattern.h"

#include <stdexcept>

namespace kvsig::tool {

void fill(std::string& pattern, std::string_view mark, std::string_view text) {
    const std::size_t at = pattern.find(mark);
    if (at == std::string::npos)
        throw std::runtime_error("the pattern has no " + std::string(mark));
    pattern.replace(at, mark.size(), text);
}

} // namespace kvsig::tool
