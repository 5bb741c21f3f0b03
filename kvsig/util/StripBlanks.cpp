#include "kvsig/util/StripBlanks.h"

#include "kvsig/util/Text.h"

namespace kvsig {

char* StripBlanks(char* text) {
    const std::string_view all = viewOf(text);
    const std::size_t end = all.find_last_not_of(' ') + 1;
    if (end < all.size())
        text[end] = '\0';
    return text;
}

} // namespace kvsig
