#pragma once

#include "kvsig/util/ProfileLines.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace kvsig {

/// A montage that an attribute file carries, as montage files have it: each key is a derivation,
/// each value its display name, empty for the derivation's own.
struct StoredMontage {
    std::string name;
    std::vector<ProfileEntry> lines;
};

/// The montages whose names are the keys of the section "Montage", in their order; the lines of
/// each are the section of its name. A name that comes again is ignored.
[[nodiscard]] std::vector<StoredMontage> readStoredMontages(std::istream& stream);

/// "[name]" and the lines.
void writeStoredMontage(std::ostream& stream, const StoredMontage& montage);

} // namespace kvsig
