#pragma once

#include "kvsig/registry/types/DataReaderManager.h"
#include "kvsig/registry/types/ReaderType.h"
#include "kvsig/util/Export.h"

#include <functional>

namespace kvsig {

/// @{
/// A new, unopened reader for a file, with its type and file name stamped on it. The host opens it
/// next, by the reader's own fileName(): of a layout (types 13 and 45) that is the data file which
/// the layout names, not the layout; DataReader::filePath() gives it uncut. openReader() does all
/// this. The reader has reference count 0 and belongs to the caller. Null when the type is unknown
/// or switched off by the file-type mode, a layout cannot be read, or the licence check refuses.
///
/// A pair type takes both paths joined by '*', and both members belong to the caller too: a pair
/// never destroys them. `fileName` then becomes the first path. The second form works on a copy.
[[nodiscard]] KVSIG_API IDataReader* _KrnlAllocReaderEx(ReaderType type, CString& fileName);
[[nodiscard]] KVSIG_API IDataReader* _KrnlAllocReaderEx(ReaderType type, const char* fileName);
/// @}

/// The same in an owning handle; a null result comes with a sentence that says why, without the
/// file's name.
[[nodiscard]] UnheldReader allocReader(ReaderType type, CString& fileName, std::string& reason);

/// Installs the check that guards every allocation; it answers whether the host may read
/// recordings. An empty function grants always, as does the library without one. Of the whole
/// process: to be set before other threads open recordings.
KVSIG_API void KrnlSetLicenceCheck(std::function<bool()> check);

} // namespace kvsig
