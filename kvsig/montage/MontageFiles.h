#pragma once

#include "kvsig/util/Export.h"

#include <iosfwd>
#include <string>
#include <vector>

/// Where montages come from. The XML templates (szINIMontageFileXML) of all places are looked at,
/// in this order, then the INI files (szINIMontageFile) of all places, and the first that has a
/// montage of the name asked for is taken: a template anywhere comes before any INI file.
///
///   the directory of SetMontageDirectory()
///   the current directory
///   the user's configuration directory (~/.config/kvsig)
///   the directory of what is installed with the library
///   what is built into the library: the same templates
///
/// The file of SetMontageFile(), whichever form it has, comes before all of them.
///
/// Template names are compared as they stand, section names without regard to letter case. Files
/// of more than 1 MiB are not read. What is set here holds for the whole process, has no lock, and
/// is to be set before montages are made on other threads.
namespace kvsig {

/// Puts a directory before the others (UTF-8); an empty one limits the search to the current
/// directory, and null takes either back.
KVSIG_API void SetMontageDirectory(const char* path);

/// Puts one file before all places, of either form; an empty path removes it.
KVSIG_API void SetMontageFile(const char* path);

/// Installs the text of the INI file: after all templates, and no other INI file is read but one of
/// SetMontageFile(). The stream is not owned; null removes it. Every search rewinds and reads it:
/// with a stream, montages are made and listed by one thread at a time.
KVSIG_API void SetMontageStream(std::istream* stream);

/// The names of all montages found, each once, in the order of the search; at most 4096.
[[nodiscard]] KVSIG_API std::vector<std::string> MontageNames();

} // namespace kvsig
