#pragma once

#include "kvsig/util/ProfileLines.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace kvsig {

/// A montage that an attribute file carries, as montage files have it: each key is a derivation,
/// each value its display name, empty for the derivation's own.
struct StoredMontage {
    std::string name;
    /// The lines "key=value" of its section; montages of one name share them.
    std::shared_ptr<const std::string> lines;

    [[nodiscard]] std::vector<ProfileEntry> entries() const;
};

/// The montages whose names are the keys of the section "Montage", in their order, one for each
/// key that is not empty; the lines of each are the section of its name.
[[nodiscard]] std::vector<StoredMontage> readStoredMontages(std::istream& stream);

/// "[name]" and the lines.
void writeStoredMontage(std::ostream& stream, const StoredMontage& montage);

} // namespace kvsig
