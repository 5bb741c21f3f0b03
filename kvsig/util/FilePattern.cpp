#include "kvsig/util/FilePattern.h"

#include "kvsig/util/Text.h"

namespace kvsig {
namespace {

// Goes back to the last '*' only, so the time is bounded by the product of the lengths.
bool fits(std::string_view name, std::string_view pattern) {
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = std::string_view::npos;
    std::size_t retry = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            retry = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == '?' || lowerCase(pattern[p]) == lowerCase(name[n]))) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++retry;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

} // namespace

bool fitsFilePattern(std::string_view fileName, std::string_view patterns) {
    while (!patterns.empty()) {
        std::string_view pattern = patterns.substr(0, patterns.find(';'));
        patterns.remove_prefix(pattern.size() + (pattern.size() < patterns.size() ? 1 : 0));
        const bool noEnding = pattern.ends_with('.');
        if (noEnding) {
            if (fileName.find('.') != std::string_view::npos)
                continue;
            pattern.remove_suffix(1);
        }
        if (!pattern.empty() && fits(fileName, pattern))
            return true;
    }
    return false;
}

} // namespace kvsig
