#include "kvsig/util/NumberText.h"

#include "kvsig/util/Text.h"

#include <array>
#include <charconv>
#include <limits>

namespace kvsig {
namespace {

// The sign of a NaN says nothing.
constexpr const char* notANumber = "nan";

/// Whole numbers of so many digits are exact in 64 bits, and in a double.
constexpr std::size_t exactDigits = 15;

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view withoutLeadingBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

bool startsNumber(std::string_view text) {
    if (!text.empty() && text.front() == '-')
        text.remove_prefix(1);
    if (!text.empty() && text.front() == '.')
        text.remove_prefix(1);
    return !text.empty() && isDigit(text.front());
}

// from_chars() leaves the value alone when it is out of range. Which end was missed shows in the
// order of magnitude: the place of the first significant digit plus the exponent.
double outOfRangeValue(std::string_view number) {
    const bool negative = number.front() == '-';
    if (negative)
        number.remove_prefix(1);
    const std::size_t exponentMark = std::min(number.find_first_of("eE"), number.size());
    const std::string_view digits = number.substr(0, exponentMark);
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::size_t lead = digits.find_first_of("123456789");
    double magnitude =
        lead < point ? static_cast<double>(point - lead) : -static_cast<double>(lead - point);
    if (exponentMark < number.size()) {
        magnitude += static_cast<double>(leadingInteger(number.substr(exponentMark + 1)));
    }
    const double value = magnitude > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    return negative ? -value : value;
}

struct PlainNumber {
    bool negative = false;
    bool hasPoint = false;
    std::int64_t digits = 0;
    double power = 1.0; ///< of ten, that the digits are divided by
};

// Most numbers in headers are a few digits, at most with a point: those that fit into `exactDigits`
// are read here, the whole text or nothing.
bool scanPlain(std::string_view text, PlainNumber& number) {
    number.negative = !text.empty() && text.front() == '-';
    if (number.negative)
        text.remove_prefix(1);
    if (text.empty() || text.size() > exactDigits)
        return false;
    for (const char c : text) {
        if (isDigit(c)) {
            number.digits = 10 * number.digits + (c - '0');
            number.power = number.hasPoint ? 10.0 * number.power : 1.0;
        } else if (c == '.' && !number.hasPoint) {
            number.hasPoint = true;
        } else {
            return false;
        }
    }
    return true;
}

// Reads the number and tells how many characters it took; 0 when there is none.
std::size_t scanDouble(std::string_view text, double& value) {
    std::size_t skipped = 0;
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') {
        text.remove_prefix(1);
        skipped = 1;
    }
    if (!startsNumber(text))
        return 0;
    // Digits and power are exact, so the quotient is rounded once, as that of a full reading.
    if (PlainNumber number; scanPlain(text, number)) {
        const double magnitude = static_cast<double>(number.digits) / number.power;
        value = number.negative ? -magnitude : magnitude;
        return skipped + text.size();
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const auto length = static_cast<std::size_t>(end - text.data());
    if (error == std::errc::result_out_of_range)
        value = outOfRangeValue(text.substr(0, length));
    return skipped + length;
}

template <typename... Arguments>
std::string charsOf(double value, Arguments... format) {
    if (value != value)
        return notANumber;
    // The longest fixed text of a double has 309 digits before the point.
    std::array<char, 512> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format...).ptr;
    return {buffer.data(), end};
}

} // namespace

double leadingDouble(std::string_view text) {
    double value = 0.0;
    return leadingDouble(text, value) ? value : 0.0;
}

bool leadingDouble(std::string_view text, double& value) {
    return scanDouble(withoutLeadingBlanks(text), value) > 0;
}

std::int64_t leadingInteger(std::string_view text) {
    text = withoutLeadingBlanks(text);
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    if (PlainNumber number; scanPlain(text, number) && !number.hasPoint)
        return number.negative ? -number.digits : number.digits;
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range)
        return text.front() == '-' ? std::numeric_limits<std::int64_t>::min()
                                   : std::numeric_limits<std::int64_t>::max();
    return value;
}

bool wholeDouble(std::string_view text, double& value) {
    text = withoutLeadingBlanks(text);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    double number = 0.0;
    if (text.empty() || scanDouble(text, number) != text.size())
        return false;
    value = number;
    return true;
}

DottedTriple dottedTriple(std::string_view text) {
    DottedTriple triple;
    for (std::int64_t* part : {&triple.first, &triple.second, &triple.third}) {
        text = withoutLeadingBlanks(text);
        const std::size_t sign = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
        const std::size_t end = std::min(text.find_first_not_of("0123456789", sign), text.size());
        if (end == 0 || !isDigit(text[end - 1]))
            return triple;
        *part = leadingInteger(text.substr(0, end));
        text.remove_prefix(end);
        if (part == &triple.third)
            break;
        if (text.empty() || text.front() != '.')
            return triple;
        text.remove_prefix(1);
    }
    triple.complete = true;
    return triple;
}

std::string fixedText(double value, int decimals) {
    return charsOf(value, std::chars_format::fixed, decimals);
}

std::string generalText(double value, int digits) {
    return charsOf(value, std::chars_format::general, digits);
}

std::string shortestText(double value) { return charsOf(value); }

std::string shortestText(float value) {
    if (value != value)
        return notANumber;
    std::array<char, 64> buffer{};
    return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
}

std::string paddedText(std::int64_t value, int width) {
    std::string digits = std::to_string(value);
    const std::size_t sign = value < 0 ? 1 : 0;
    if (digits.size() < static_cast<std::size_t>(width))
        digits.insert(sign, static_cast<std::size_t>(width) - digits.size(), '0');
    return digits;
}

} // namespace kvsig
