#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

/// Names that a host offers as references; ends with a null pointer.
KVSIG_API extern const char* const gpszDefRefList[];

/// Index of `name` in gpszDefRefList (letter case ignored), or -1.
KVSIG_API int IndexOfDefRef(const char* name);

/// An average reference: its display name and its definition ("A1+A2").
struct AvgRefDefn {
    const char* pszName; ///< as rows name it
    const char* pszDefn; ///< as IsAvgDefn() knows it
};

/// The average references that every montage offers; ends with a row of null pointers.
KVSIG_API extern const AvgRefDefn gGlobalAvgRefs[];

} // namespace kvsig
