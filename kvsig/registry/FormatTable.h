#pragma once

#include "kvsig/util/Export.h"

#include <span>
#include <string>
#include <string_view>

namespace kvsig {

/// A recording format: its number, its display name and its file pattern. The first word of the
/// name is the type name.
struct FormatRow {
    int type;
    const char* name;    ///< "EDF90 (*.edf)"
    const char* pattern; ///< "*.edf"

    [[nodiscard]] KVSIG_API std::string_view typeName() const;
};

/// The formats that this build reads.
[[nodiscard]] KVSIG_API std::span<const FormatRow> readableFormats();

/// The row whose type name is `name` (letter case ignored), or null.
[[nodiscard]] KVSIG_API const FormatRow* formatByName(std::string_view name);
[[nodiscard]] KVSIG_API const FormatRow* formatByType(int type);

/// The type name of a format; empty for an unknown type.
[[nodiscard]] std::string typeNameOf(int type);

} // namespace kvsig
