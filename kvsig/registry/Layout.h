#pragma once

#include "kvsig/registry/types/DataReaderManager.h"

#include <string>

namespace kvsig {

/// Layouts describe a recording beside or instead of its own header: they name the data file and
/// its type and carry attribute text. Both functions read the layout at `path` and return a new
/// reader with its type, file name and attributes set, or null with a sentence in `reason`.
///
/// The data file is looked for beside the layout first, under its exact name and then under one
/// that differs in letter case alone; otherwise the name that the layout stores is kept.
UnheldReader openLayout(DataReaderManager& manager, const std::string& path, std::string& reason);
UnheldReader openXmlLayout(DataReaderManager& manager, const std::string& path,
                           std::string& reason);

/// Whether a file's content is a layout, well made or not.
bool isLayoutFile(const char* path);

} // namespace kvsig
