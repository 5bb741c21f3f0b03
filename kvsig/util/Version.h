#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

/// Which library is in use, which may be a later one than a program was compiled with.
struct LibraryVersion {
    const char* release; ///< "0.1.0"
    int abi;             ///< the number at the end of the SONAME
};

/// The library that the program runs with.
[[nodiscard]] KVSIG_API LibraryVersion libraryVersion();

} // namespace kvsig
