#pragma once

#include "kvsig/util/Export.h"

#include <string>
#include <string_view>

namespace kvsig {

/// The file name at the end of a path that may come from another system: behind the last '/', '\\'
/// or a drive letter's colon.
[[nodiscard]] KVSIG_API std::string_view baseName(std::string_view path);

/// The path of the regular file in the folder of `path` whose name is the base name of `name`, or
/// else differs from it in ASCII letter case alone; without one, a link of such a name that leads
/// nowhere, since a file that is there and does not open is not absent: opening it tells why. Empty
/// when there is neither.
[[nodiscard]] KVSIG_API std::string neighbourFile(const std::string& path, std::string_view name);

/// The file beside `path` of the same name but for its ending, given with its dot (".nev"); found
/// like a neighbour.
[[nodiscard]] KVSIG_API std::string companionFile(const std::string& path, std::string_view ending);

/// The ending of a file's name with its dot, empty without one.
[[nodiscard]] KVSIG_API std::string_view nameEnding(std::string_view path);

} // namespace kvsig
