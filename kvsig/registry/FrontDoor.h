#pragma once

#include "kvsig/kernel/ReaderPtr.h"
#include "kvsig/registry/Detection.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/Export.h"

#include <string>

namespace kvsig {

/// Opens a recording, a layout, or as "a*b" the synchronised pair of two recordings. Without a type
/// it is detected. The members of a pair live and go with it. On failure the result is empty and
/// `error`, if given, holds one sentence that names the file and what is wrong with it.
[[nodiscard]] KVSIG_API ReaderPtr openReader(const char* path, int type = 0,
                                             std::string* error = nullptr);

} // namespace kvsig
