#pragma once

#include "kvsig/montage/SourceMontage.h"
#include "tool/Recording.h"

#include <CLI/CLI.hpp>
#include <string>

namespace kvsig::tool {

/// Which montage of a recording is wanted.
struct MontageChoice {
    std::string name;      ///< empty: the recording's own channels
    std::string file;      ///< montages in this file come before all others
    std::string reference; ///< empty: as the montage has it

    [[nodiscard]] bool isMade() const { return !name.empty() || !reference.empty(); }
};

void addMontageOptions(CLI::App& command, MontageChoice& choice);

/// Fills a montage over the recording; says what of it is left out. False with a complaint when
/// there is no such montage or reference, or nothing of it can be made.
[[nodiscard]] bool fillMontage(SourceMontage& montage, const Recording& recording,
                               const MontageChoice& choice);

/// What a row is labelled with; empty for a gap. A channel without a reference has no hyphen.
[[nodiscard]] std::string rowLabel(DataSource& source);

/// Puts a montage file before all others; an empty one takes the last one back. False with a
/// complaint when it cannot be opened.
[[nodiscard]] bool useMontageFile(const std::string& file, const std::string& where);

/// The names of the montages that a recording can be shown in.
[[nodiscard]] std::vector<std::string> montageNames(IDataReader& reader);

} // namespace kvsig::tool
