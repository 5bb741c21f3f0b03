#include "tool/TimeOption.h"

#include "kvsig/util/TimeText.h"

#include <string_view>

namespace kvsig::tool {
namespace {

constexpr std::string_view digits = "0123456789";

// Digits, in up to four fields between colons, with a fraction at most at the very end.
bool looksLikeTime(std::string_view text) {
    std::size_t colons = 0;
    while (!text.empty()) {
        const std::size_t end = text.find_first_not_of(digits);
        if (end == std::string_view::npos)
            return true;
        if (text[end] == '.')
            return end + 1 < text.size() &&
                   text.find_first_not_of(digits, end + 1) == std::string_view::npos;
        if (text[end] != ':' || end == 0 || ++colons > 3)
            return false;
        text.remove_prefix(end + 1);
    }
    return false;
}

} // namespace

bool readTime(const std::string& text, double& seconds) {
    // TimeToReal() looks at 32 characters and takes words as 0: here both would hide a mistake.
    if (text.size() > 32 || !looksLikeTime(text))
        return false;
    seconds = TimeToReal(text.c_str());
    return true;
}

} // namespace kvsig::tool
