#include "tool/check/Units.h"

#include "kvsig/util/Text.h"
#include "tool/Words.h"

#include <algorithm>
#include <limits>

namespace kvsig::tool {
namespace {

constexpr double anywhere = std::numeric_limits<double>::infinity();
constexpr double mostVolts = 10.0; // of any input of a polygraph

struct Row {
    std::string_view name;
    double farthest;
    double volts;
};

constexpr Row units[] = {
    {"nv", mostVolts * 1e9, 1e-9},
    {"uv", mostVolts * 1e6, 1e-6},
    {"mv", mostVolts * 1e3, 1e-3},
    {"v", mostVolts, 1.0},
    {"degc", 200, 0},
    {"c", 200, 0},
    {"celsius", 200, 0},
    {"degf", 400, 0},
    {"%", 1000, 0},
    {"bpm", 10000, 0},
    {"/min", 10000, 0},
    {"mmhg", 10000, 0},
    {"cmh2o", 10000, 0},
    {"cm h2o", 10000, 0},
    {"mbar", anywhere, 0},
    {"pa", anywhere, 0},
    {"kpa", anywhere, 0},
    {"l", anywhere, 0},
    {"ml", anywhere, 0},
    {"l/s", anywhere, 0},
    {"l/min", anywhere, 0},
    {"hz", anywhere, 0},
    {"s", anywhere, 0},
    {"ms", anywhere, 0},
    {"deg", anywhere, 0},
    {"rad", anywhere, 0},
    {"g", anywhere, 0},
    {"mg", anywhere, 0},
    {"m/s2", anywhere, 0},
    {"m/s^2", anywhere, 0},
    {"m", anywhere, 0},
    {"cm", anywhere, 0},
    {"mm", anywhere, 0},
    {"ohm", anywhere, 0},
    {"kohm", anywhere, 0},
    {"a", anywhere, 0},
    {"ma", anywhere, 0},
    {"ua", anywhere, 0},
    {"db", anywhere, 0},
    {"t", anywhere, 0},
    {"ft", anywhere, 0},
    {"us", anywhere, 0},
    {"ph", 100, 0},
    {"lx", anywhere, 0},
    {"lux", anywhere, 0},
    {"n", anywhere, 0},
    {"w", anywhere, 0},
    {"boolean", anywhere, 0},
    {"", anywhere, 0},
};

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

// Micro has two code points, U+00B5 and U+03BC; a degree sign stands for "deg".
std::string plainName(std::string_view text) {
    std::string name = toUtf8(text);
    replaceAll(name, "\xC2\xB5", "u");
    replaceAll(name, "\xCE\xBC", "u");
    replaceAll(name, "\xC2\xB0", "deg");
    std::transform(name.begin(), name.end(), name.begin(), [](char c) { return lowerCase(c); });
    return name;
}

} // namespace

std::optional<Unit> knownUnit(std::string_view text) {
    const std::string name = plainName(text);
    const auto row = std::find_if(std::begin(units), std::end(units),
                                  [&name](const Row& r) { return r.name == name; });
    if (row == std::end(units))
        return std::nullopt;
    return Unit{name, row->farthest, row->volts};
}

} // namespace kvsig::tool
