#pragma once

#include "kvsig/util/Export.h"

#include <string>

namespace kvsig {

/// The type of a recording or layout: of the formats whose pattern fits the file's name, in
/// registry order, the first that knows its content; else any format that knows the content; else
/// the one format, not built here, whose pattern the name fits. Of "a*b", where that is no file,
/// the pair type of both. 0 when the type cannot be told.
[[nodiscard]] KVSIG_API int DetectFileType(const char* path);

/// Why the type of a file cannot be told, in one sentence that begins with its path (of a pair, the
/// path of the half that it is about).
[[nodiscard]] std::string undetectedReason(const char* path);

} // namespace kvsig
