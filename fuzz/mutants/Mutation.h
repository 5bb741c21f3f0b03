#pragma once

#include <cstdint>
#include <string>

namespace kvsig::mutants {

/// A recording that mutants are made of.
struct Original {
    std::string name; ///< its file name
    std::string bytes;
};

/// The start of a recording, of 64 KiB or little more. EDF and BDF keep whole data records, at
/// least one, and where the header told their count rightly it does so again: some libraries refuse
/// all others.
[[nodiscard]] std::string shortened(const std::string& bytes);

/// The mutant of that number, always the same one: of four, two have a field of the header set to
/// an extreme (fields of EDF and BDF by their table, else binary numbers and texts anywhere), one
/// is cut, one has bits flipped, most of them in the header. `what`, if given, says in words what
/// was done.
[[nodiscard]] std::string mutantOf(const Original& original, std::uint64_t number,
                                   std::string* what = nullptr);

} // namespace kvsig::mutants
