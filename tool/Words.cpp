#include "tool/Words.h"

#include "kvsig/util/TimeText.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace kvsig::tool {
namespace {

bool quietMode = false;
std::string complaint;

void say(const std::string& sentence) {
    const std::string line = "kvsig: " + printable(sentence) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// Length of the well-formed UTF-8 sequence at the start of `text`, or 0.
std::size_t sequenceLength(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!isContinuation(text[i]))
            return 0;
    const auto second = static_cast<unsigned char>(text[1]);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool surrogate = lead == 0xED && second > 0x9F;
    const bool beyond = lead == 0xF4 && second > 0x8F;
    return overlong || surrogate || beyond ? 0 : length;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

} // namespace

void setQuiet(bool quiet) { quietMode = quiet; }

void complain(const std::string& sentence) {
    if (complaint.empty())
        complaint = sentence;
    say(sentence);
}

std::string takeComplaint() { return std::exchange(complaint, {}); }

void remark(const std::string& sentence) {
    if (!quietMode)
        say(sentence);
}

std::string toUtf8(std::string_view bytes) {
    if (isUtf8(bytes))
        return std::string(bytes);
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text.push_back(c);
        } else {
            text.push_back(static_cast<char>(0xC0U | byte >> 6U));
            text.push_back(static_cast<char>(0x80U | (byte & 0x3FU)));
        }
    }
    return text;
}

std::string printable(std::string_view bytes) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    const std::string utf8 = toUtf8(bytes);
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        const auto next = i + 1 < utf8.size() ? static_cast<unsigned char>(utf8[i + 1]) : 0U;
        const bool secondSet = byte == 0xC2 && next < 0xA0;
        if (byte >= 0x20 && byte != 0x7F && !secondSet) {
            text.push_back(utf8[i]);
            continue;
        }
        const unsigned int control = secondSet ? next : byte;
        text += std::string("\\x") + digits[control >> 4U] + digits[control & 0xFU];
        i += secondSet ? 1 : 0;
    }
    return text;
}

std::string clockText(double seconds) {
    char text[realToTimeSize];
    const bool fraction = std::fabs(seconds - std::round(seconds)) > 0.005;
    // RealToTime() cuts: a tenth that is no binary fraction must not lose a hundredth.
    constexpr double belowAHundredth = 1e-4;
    const double nearest = std::round(seconds * 100.0) / 100.0;
    return RealToTime(nearest + std::copysign(belowAHundredth, nearest), text, true, fraction,
                      false);
}

} // namespace kvsig::tool
