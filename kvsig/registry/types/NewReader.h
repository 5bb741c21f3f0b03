#pragma once

#include "kvsig/registry/types/ReaderType.h"

namespace kvsig {

class IDataReader;

/// A new, unopened reader of the type's class, with reference count 0; for a format that is listed
/// but not built one whose open() says so. Null for layouts and numbers that are no format.
[[nodiscard]] IDataReader* newReader(ReaderType type);

} // namespace kvsig
