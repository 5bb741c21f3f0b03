#pragma once

#include "kvsig/util/Export.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Numbers to and from text, independent of the host's locale: the decimal mark is always a point.
namespace kvsig {

/// The decimal number at the start of `text`: leading blanks and one sign are taken, reading stops
/// at the first character that does not fit. No number gives 0; beyond the range of a double gives
/// an infinity or 0. "inf", "nan" and hexadecimal numbers are no numbers.
[[nodiscard]] KVSIG_API double leadingDouble(std::string_view text);
/// The same; false, and `value` as it was, when there is no number.
[[nodiscard]] KVSIG_API bool leadingDouble(std::string_view text, double& value);

/// The whole number at the start of `text`, by the same rules; saturates at 64 bits.
[[nodiscard]] KVSIG_API std::int64_t leadingInteger(std::string_view text);

/// `text` as one decimal number and nothing else (blanks around it are ignored).
[[nodiscard]] KVSIG_API bool wholeDouble(std::string_view text, double& value);

/// Three whole numbers joined by points ("dd.mm.yy", "hh.mm.ss"); what follows the third is
/// ignored.
struct DottedTriple {
    bool complete = false; ///< all three were found
    std::int64_t first = 0, second = 0, third = 0;
};
[[nodiscard]] KVSIG_API DottedTriple dottedTriple(std::string_view text);

/// As printf's "%.<decimals>f".
[[nodiscard]] KVSIG_API std::string fixedText(double value, int decimals);
/// As printf's "%.<digits>g".
[[nodiscard]] KVSIG_API std::string generalText(double value, int digits);
/// The shortest text that reads back to the same value.
[[nodiscard]] KVSIG_API std::string shortestText(double value);
[[nodiscard]] KVSIG_API std::string shortestText(float value);
/// As printf's "%0<width>d".
[[nodiscard]] KVSIG_API std::string paddedText(std::int64_t value, int width);

} // namespace kvsig
