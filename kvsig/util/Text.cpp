#include "kvsig/util/Text.h"

#include <algorithm>
#include <cstring>
#include <ostream>

namespace kvsig {

namespace {

void copyWhole(char* dest, std::size_t size, std::string_view source) {
    if (!dest || size == 0)
        return;
    const std::size_t length = std::min(source.size(), size - 1);
    if (length > 0)
        std::memmove(dest, source.data(), length);
    dest[length] = '\0';
}

} // namespace

void copyText(char* dest, std::size_t size, std::string_view source) {
    copyWhole(dest, size, source.substr(0, source.find('\0')));
}

void copyText(char* dest, std::size_t size, const char* source) {
    copyWhole(dest, size, viewOf(source));
}

std::string lowerCase(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        c = lowerCase(c);
    return result;
}

bool equalNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && startsWithNoCase(a, b);
}

bool startsWithNoCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(),
                      [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

std::string_view trimmed(std::string_view text) {
    constexpr const char* blanks = " \t";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::vector<std::string> splitWords(std::string_view text, char separator) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        if (end > 0)
            words.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

void writeText(std::ostream& stream, std::string_view text) {
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
}

} // namespace kvsig
