#include "kvsig/util/ProfileLines.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <istream>
#include <streambuf>
#include <utility>

namespace kvsig {
namespace {

constexpr std::size_t intDigits = 15;

} // namespace

int profileInt(std::string_view value, int def) {
    value = value.substr(0, intDigits);
    if (value.empty() || !std::all_of(value.begin(), value.end(), isDigit))
        return def;
    return saturate<int>(leadingInteger(value));
}

double profileDouble(std::string_view value, double def) {
    double number = def;
    const auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    if (value.empty() || isBlank(value.front()) || isBlank(value.back()) ||
        !wholeDouble(value, number) || !std::isfinite(number))
        return def;
    return number;
}

ProfileLine splitProfileLine(std::string_view line) {
    using Kind = ProfileLine::Kind;
    if (line.find_first_not_of(" \t") == std::string_view::npos)
        return {Kind::blank, {}, {}};
    if (line.front() == ';')
        return {Kind::comment, {}, {}};
    if (line.front() == '[')
        return {Kind::section, line.substr(1, line.find(']') - 1), {}};
    const std::size_t mark = line.find('=');
    if (mark == std::string_view::npos)
        return {Kind::other, {}, {}};
    return {Kind::entry, line.substr(0, mark), line.substr(mark + 1)};
}

// The buffer is used directly: it neither sets the stream's flags nor throws for a host that asked
// its stream to throw at the end. File buffers throw when a read fails.
bool rewindStream(std::istream& stream) {
    using Traits = std::char_traits<char>;
    std::streambuf* const buffer = stream.rdbuf();
    if (!buffer)
        return false;
    const auto seekStart = [buffer] {
        return buffer->pubseekpos(0, std::ios::in) == std::streampos(0);
    };
    try {
        stream.clear();
        if (!seekStart())
            return false;
        if (buffer->sgetc() != Traits::to_int_type(byteOrderMark.front()))
            return true;
        for (const char c : byteOrderMark)
            if (buffer->sbumpc() != Traits::to_int_type(c))
                return seekStart();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

std::optional<std::string> streamText(std::istream& stream, std::size_t mostBytes) {
    constexpr std::size_t blockBytes = 65536;
    std::string text;
    if (!rewindStream(stream))
        return text;
    try {
        for (std::size_t used = 0; used <= mostBytes;) {
            text.resize(used + blockBytes);
            const auto read = stream.rdbuf()->sgetn(text.data() + used, blockBytes);
            text.resize(used += static_cast<std::size_t>(std::max<std::streamsize>(read, 0)));
            if (read <= 0)
                break;
        }
    } catch (const std::exception&) {
        return std::nullopt;
    }
    return text.size() <= mostBytes ? std::optional(std::move(text)) : std::nullopt;
}

bool readProfileLine(std::istream& stream, std::string& line, std::size_t longest) {
    using Traits = std::char_traits<char>;
    line.clear();
    if (!stream.rdbuf())
        return false;
    bool any = false;
    try {
        for (auto c = stream.rdbuf()->sbumpc(); !Traits::eq_int_type(c, Traits::eof());
             c = stream.rdbuf()->sbumpc()) {
            any = true;
            if (c == '\n')
                break;
            if (line.size() < longest)
                line.push_back(Traits::to_char_type(c));
        }
    } catch (const std::exception&) {
        return false;
    }
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return any;
}

bool findProfileSection(std::istream& stream, std::string_view section) {
    if (!rewindStream(stream))
        return false;
    std::string text;
    while (readProfileLine(stream, text)) {
        const ProfileLine line = splitProfileLine(text);
        if (line.kind == ProfileLine::Kind::section && equalNoCase(line.name, section))
            return true;
    }
    return false;
}

bool forEachProfileEntry(std::istream& stream, std::string_view section,
                         const std::function<bool(const ProfileLine&)>& consume) {
    if (!findProfileSection(stream, section))
        return false;
    std::string text;
    while (readProfileLine(stream, text)) {
        const ProfileLine line = splitProfileLine(text);
        if (line.kind == ProfileLine::Kind::section)
            break;
        if (line.kind == ProfileLine::Kind::entry && !consume(line))
            break;
    }
    return true;
}

std::optional<std::string> profileValue(std::istream& stream, std::string_view section,
                                        std::string_view key) {
    std::optional<std::string> value;
    forEachProfileEntry(stream, section, [&value, key](const ProfileLine& line) {
        if (equalNoCase(line.name, key))
            value = std::string(line.value);
        return !value;
    });
    return value;
}

} // namespace kvsig
