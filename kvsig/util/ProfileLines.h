#pragma once

#include "kvsig/util/Limits.h"

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

/// The parts that readers of INI-style texts (ProfileText.h) are made of.
namespace kvsig {

/// A value by the rules of GetLocalProfileInt() and GetLocalProfileDouble().
[[nodiscard]] int profileInt(std::string_view value, int def);
[[nodiscard]] double profileDouble(std::string_view value, double def);

struct ProfileEntry {
    std::string key;
    std::string value;
};

/// A line of a profile text taken apart.
struct ProfileLine {
    enum class Kind { blank, comment, section, entry, other };
    Kind kind = Kind::other;
    std::string_view name;  ///< the section's name, or the entry's key
    std::string_view value; ///< the entry's value
};

/// `line` without its line end; the result refers to it.
[[nodiscard]] ProfileLine splitProfileLine(std::string_view line);

/// What some editors put in front of UTF-8 text; no part of the first line.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Clears the stream's error state and goes back to its start, behind a byte-order mark; false when
/// it cannot.
bool rewindStream(std::istream& stream);

/// The whole stream from its start; nothing when it holds more than `mostBytes`.
[[nodiscard]] std::optional<std::string> streamText(std::istream& stream, std::size_t mostBytes);

/// The next line without its line end, cut to `longest` characters; false at the end of the stream.
bool readProfileLine(std::istream& stream, std::string& line,
                     std::size_t longest = profileLineLength);

/// Rewinds and reads up to the line that opens the section.
bool findProfileSection(std::istream& stream, std::string_view section);

/// Hands out the entries of a section in their order until `consume` returns false. False when
/// there is no such section.
bool forEachProfileEntry(std::istream& stream, std::string_view section,
                         const std::function<bool(const ProfileLine&)>& consume);

/// The value of the first entry of that key, uncut.
[[nodiscard]] std::optional<std::string>
profileValue(std::istream& stream, std::string_view section, std::string_view key);

} // namespace kvsig
