#pragma once

#include "tool/ChannelNames.h"

#include <optional>
#include <string>
#include <vector>

namespace kvsig::tool {

/// A channel that a row is made of.
struct RowPart {
    std::string name; ///< as it was given
    int channel = -1; ///< -1: unknown
    std::optional<double> weight;
};

/// What a text of --channels stands for.
struct RowDefinition {
    enum class Kind {
        recorded,          ///< one part
        difference,        ///< the first part less the second
        averageDifference, ///< the first part less the average of the others
        average            ///< the average of the parts
    };
    Kind kind = Kind::recorded;
    std::vector<RowPart> parts;
    std::string average; ///< its name or definition
    std::string text;    ///< what was read, without blanks around it

    [[nodiscard]] std::vector<int> channels() const;
    /// The weights of the average's parts; empty: all weigh the same.
    [[nodiscard]] std::vector<double> weights() const;
};

/// Reads a channel ("C3"), a difference ("C3-A1"), one with an average ("C3-A1+A2", "C3-Av17") or
/// an average ("F3:0.5+F4:0.5"). Names may hold hyphens and colons themselves: a text is read in
/// the first way in which all its names are known. Empty when there is none; `fault` then says
/// what is wrong in the way that leaves the fewest doubts.
[[nodiscard]] std::optional<RowDefinition>
readRowDefinition(const std::string& text, const ChannelNames& names, std::string& fault);

} // namespace kvsig::tool
