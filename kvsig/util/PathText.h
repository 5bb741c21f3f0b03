#pragma once

#include "kvsig/util/Export.h"

/// Paths in the caller's buffers, and the current folder. A path is [drive][folder][name][.ext];
/// the folder ends with its last separator ('/', on Windows '\' as well), drives exist on Windows
/// alone. A dot that starts a name (".profile", "..") starts no extension.
namespace kvsig {

/// Bytes that a path buffer must have room for, its end included. No function writes more; a path
/// that does not fit becomes an empty text, since a cut one would name another file.
inline constexpr int pathTextSize = 260;

/// Replaces the extension (the name gets one if it has none) and returns `path`. `ext` may come
/// with or without its dot; an empty one removes the extension.
KVSIG_API char* KrnlChangeExt(char* path, const char* ext);

/// Replaces name and extension by `file`, keeps drive and folder, and returns `path`.
KVSIG_API char* KrnlChangeFile(char* path, const char* file);

/// Makes the drive and the folder of `path` the current ones; a path without them changes nothing.
/// Returns 1, or 0 when either cannot be entered. The current folder is the whole process's.
KVSIG_API int KrnlMoveToDir(const char* path);

/// Writes the current folder of a drive (0: the current drive, 1: A; ignored where there are none)
/// to `buf`; an empty text when it is unknown.
KVSIG_API void KrnlGetCurDir(int drive, char* buf);

} // namespace kvsig
