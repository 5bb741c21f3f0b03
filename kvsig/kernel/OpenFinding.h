#pragma once

#include <string>

namespace kvsig {

/// Something that a reader noticed while opening and that did not stop it.
struct OpenFinding {
    /// How much it matters.
    enum class Severity {
        note,    ///< harmless; worth a line in a list of oddities
        warning, ///< the user must know before believing what is read
        unusable ///< the recording opens, but its samples or times mean nothing
    };
    Severity severity = Severity::note; ///< how much it matters
    std::string text; ///< one sentence: field, place in the file, value; no patient data
};

} // namespace kvsig
