#pragma once

#include "kvsig/util/Export.h"

#include <iosfwd>

/// INI-style texts, read from any stream that can be rewound.
///
/// A section starts with a line whose first character is "[" and runs to the next such line; its
/// name ends at the next "]". Lines that begin with ";" are comments. Any other line with a "=" is
/// an entry: the key before the first "=", the value the whole rest of the line, blanks included.
/// Sections and keys are compared without regard to letter case. Lines may end in CR LF and are
/// looked at up to 8192 characters; the rest of a longer line is skipped.
///
/// Nothing here throws or uses the stream's locale or format flags. A stream that cannot be rewound
/// or read counts as empty; null texts count as empty ones.
namespace kvsig {

/// Clears the stream's error state, rewinds it and reads up to the line that opens `section`.
/// Returns 1 with the stream just past that line, 0 when there is no such section.
KVSIG_API int FindAppName(std::istream& stream, const char* section);

/// Copies the value of `key` to `out`, cut to size - 1 characters and terminated, and returns the
/// length of what was copied. A missing section or key gives `def` and 0.
///
/// With a null key, copies the section's key names one after another, each terminated, and one
/// more terminator behind the last. It stops before a name that would not fit with these two, and
/// returns the characters used without the final terminator. Entries without a key are left out:
/// an empty name would end the list.
///
/// A null `out` and a size below 1 give 0 and nothing is written.
KVSIG_API int GetLocalProfileString(const char* section, const char* key, const char* def,
                                    char* out, int size, std::istream& stream);

/// A value of nothing but decimal digits, of which the first 15 count; saturates at the largest
/// int. Anything else gives `def`, a value with a leading minus too, on purpose: negative numbers
/// are not accepted.
KVSIG_API int GetLocalProfileInt(const char* section, const char* key, int def,
                                 std::istream& stream);

/// A value that is one finite decimal number from its first character to its last, with an optional
/// sign and exponent; anything else gives `def`.
KVSIG_API double GetLocalProfileDouble(const char* section, const char* key, double def,
                                       std::istream& stream);

} // namespace kvsig
