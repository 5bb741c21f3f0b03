#pragma once

#include "kvsig/kernel/ReaderPtr.h"
#include "kvsig/util/Export.h"

#include <string>

namespace kvsig {

/// True when this build reads the format.
[[nodiscard]] KVSIG_API bool KrnlIsReadable(int type);

/// The type of a recording by a look at its content; 0 when it is none that this build knows.
[[nodiscard]] KVSIG_API int DetectFileType(const char* path);

/// Opens a recording. Without a type it is detected. On failure the result is empty and `error`,
/// if given, holds one sentence that names the file and what is wrong with it.
[[nodiscard]] KVSIG_API ReaderPtr openReader(const char* path, int type = 0,
                                             std::string* error = nullptr);

} // namespace kvsig
