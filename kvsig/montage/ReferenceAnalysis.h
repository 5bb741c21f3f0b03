#pragma once

#include <optional>
#include <span>
#include <string>

namespace kvsig {

/// The two inputs of a row.
struct RowGrids {
    std::string grid1;
    std::string grid2;
};

/// The reference that rows have in common (gap rows are not to be among them): the grid 2 that all
/// scalp electrodes have, if there are any; else the one that more than half of all rows have.
/// Nothing when there is none. Letter case is ignored; the first spelling is given.
[[nodiscard]] std::optional<std::string> commonReference(std::span<const RowGrids> rows);

} // namespace kvsig
