#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kvsig::tool {

/// What is known of a unit: how far values in it may plausibly lie from zero, in that unit.
struct Unit {
    std::string name; ///< lower case, with "u" for every sign of micro
    double farthest;
    double volts; ///< of one unit; 0 for what is no voltage
};

/// The unit of a unit text as a file gives it; empty when it is unknown. A blank text is a unit of
/// its own, without a farthest value.
[[nodiscard]] std::optional<Unit> knownUnit(std::string_view text);

} // namespace kvsig::tool
