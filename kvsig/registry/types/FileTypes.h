#pragma once

#include "kvsig/registry/types/ReaderType.h"
#include "kvsig/util/Export.h"

#include <string>
#include <vector>

/// The type table as hosts ask it: functions over the process's registry, documented at the
/// operations of DataReaderManager of the same purpose.
namespace kvsig {

/// @{
/// The file-type mode: 1, the initial one, enables all formats but XML layouts, 4 enables all; see
/// DataReaderManager::getFileTypeFlag(). Of the whole process: to be set before other threads open
/// recordings.
KVSIG_API int KrnlGetFileTypeFlag();
KVSIG_API void KrnlSetFileTypeFlag(int mode);
/// @}

/// Types of the enabled and listed formats, ended by 0. Valid until the next call of this function
/// or of KrnlGetFileTypeStrings().
KVSIG_API int* KrnlGetFileTypes();
/// Name and pattern of the same formats in turn, ended by two nulls: the filter of an open dialog.
KVSIG_API const char** KrnlGetFileTypeStrings();

/// Type name to number, 0 for none.
KVSIG_API int KrnlGetFileType(const char* typeName);
/// Number to type name; `buffer` holds at least 47 bytes. Returns 1, or 0 with an empty text.
KVSIG_API int KrnlGetFileTypeName(ReaderType type, char* buffer);

/// The tag of the first enabled and listed format of that type; "" for none, as all built-in ones.
KVSIG_API const char* GetPartnerTag(int type);
/// Bits of `mask` in the flags of the first enabled and listed format of that type.
KVSIG_API unsigned long GetDataReaderStaticFlag(int type, unsigned long mask);

/// The names of all formats in the order in which lists show them.
KVSIG_API std::vector<const char*> GetDataReaderSortOrder();
/// Named formats come first, in the order given; the others keep theirs. Of the whole process: to
/// be set before other threads open recordings.
KVSIG_API void SetDataReaderSortOrder(const std::vector<const char*>& names);

/// True when this build reads the format (or, of a pair type, both formats).
[[nodiscard]] KVSIG_API bool KrnlIsReadable(int type);

/// The name that stands for a type in layouts and attribute files and that KrnlGetFileType() reads
/// back: "EDF90", "Interleaved". Of a pair, which no layout names, "EDF90+BDF". Empty for none.
[[nodiscard]] KVSIG_API std::string typeNameOf(ReaderType type);

} // namespace kvsig
