#pragma once

#include "kvsig/util/Export.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

/// Bounded text helpers. Texts are opaque 8-bit bytes; letters and digits are the ASCII ones, so
/// nothing here depends on the locale. A null pointer counts as an empty text everywhere.
namespace kvsig {

/// `text`, or an empty view for null.
[[nodiscard]] inline std::string_view viewOf(const char* text) {
    return text ? std::string_view(text) : std::string_view();
}

/// The text in a field of fixed size, which a full field need not terminate.
template <std::size_t Size>
[[nodiscard]] std::string_view fieldView(const char (&field)[Size]) {
    const std::string_view bytes(field, Size);
    return bytes.substr(0, bytes.find('\0'));
}

/// Copies `source` into `dest` of `size` bytes, cut to size - 1 characters and always terminated.
/// `source` may be null, may overlap `dest` and may be `dest` itself.
KVSIG_API void copyText(char* dest, std::size_t size, const char* source);

/// The same for text that is not terminated; it ends at its first NUL, if it has one.
KVSIG_API void copyText(char* dest, std::size_t size, std::string_view source);

template <std::size_t Size, typename Source>
void copyText(char (&dest)[Size], const Source& source) {
    copyText(dest, Size, source);
}

[[nodiscard]] inline bool isDigit(char c) { return c >= '0' && c <= '9'; }
[[nodiscard]] inline char lowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
/// All letters of a text, for look-ups without regard to case.
[[nodiscard]] KVSIG_API std::string lowerCase(std::string_view text);
[[nodiscard]] inline bool isLetterOrDigit(char c) {
    return isDigit(c) || (lowerCase(c) >= 'a' && lowerCase(c) <= 'z');
}

/// Comparison without regard to the case of ASCII letters.
[[nodiscard]] KVSIG_API bool equalNoCase(std::string_view a, std::string_view b);
[[nodiscard]] KVSIG_API bool startsWithNoCase(std::string_view text, std::string_view prefix);

/// The words of `text` between separators; empty words are not counted.
[[nodiscard]] KVSIG_API std::vector<std::string> splitWords(std::string_view text, char separator);

/// `text` without the blanks and tabs around it.
[[nodiscard]] KVSIG_API std::string_view trimmed(std::string_view text);

/// Writes the bytes as they are: the host's stream keeps its width, flags and locale out of it.
KVSIG_API void writeText(std::ostream& stream, std::string_view text);

} // namespace kvsig
