#pragma once

#include <initializer_list>
#include <string>
#include <vector>

namespace kvsig::tool {

/// The one of the endings ("csv", without the point) that the path has, letter case ignored; empty
/// when it has none of them.
[[nodiscard]] std::string endingAmong(const std::string& path,
                                      std::initializer_list<const char*> endings);

/// Whether an output names a folder: an existing one, or any path that ends in a slash.
[[nodiscard]] bool namesFolder(const std::string& output);

/// Where the output of each file goes. A folder takes "<file without its ending>.<ending>" of each;
/// an empty path or "-" is standard output, for all of them. Throws a CLI::ValidationError when
/// several outputs would have one path.
[[nodiscard]] std::vector<std::string> outputPaths(const std::vector<std::string>& files,
                                                   const std::string& output,
                                                   const std::string& ending);

} // namespace kvsig::tool
