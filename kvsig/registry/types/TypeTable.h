#pragma once

#include "kvsig/registry/types/ReaderType.h"

#include <span>

namespace kvsig {

/// A row of the type table. A type number may stand in several rows, a name in one.
struct TypeRow {
    ReaderType type;
    const char* name;
    const char* pattern;
    /// Built-in rows are read by the registry itself, the others by a factory class each.
    bool builtIn;
    bool listed = true;
};

/// All formats in registration order: the built-in rows, then the factories'.
[[nodiscard]] std::span<const TypeRow> typeTable();

} // namespace kvsig
