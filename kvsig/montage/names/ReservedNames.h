#pragma once

#include "kvsig/util/Export.h"

/// Names with a meaning of their own, and the default names of the files beside a recording.
/// Writable arrays, so that a host may read (and rename) them; texts are NUL-terminated.
namespace kvsig {

KVSIG_API extern char gszGapDefn[];  ///< "Gap": definition text of a spacer row
KVSIG_API extern char gszGap[];      ///< eight blanks: display name of a spacer row
KVSIG_API extern char gszOff[];      ///< "(off)": label of a switched-off setting
KVSIG_API extern char gszRecorded[]; ///< "Recorded": the montage made of the recorded channels
KVSIG_API extern char gszComments[]; ///< "Comment": the comment pseudo-channel
KVSIG_API extern char gszTimes[];    ///< "Time": the time pseudo-channel

KVSIG_API extern char szINIMontageFile[];    ///< "kvmont.ini"
KVSIG_API extern char szINIMontageFileXML[]; ///< "KVMontageTemplates.xml"
KVSIG_API extern char szINITopoFile[];       ///< "kvtopo.ini"
KVSIG_API extern char szINIUnkDataFile[];    ///< "kvunkdat.ini"

/// @{
/// Section names of attribute files.
inline constexpr const char* pszINIFileInfo = "FileInfo";
inline constexpr const char* pszINIChannelMap = "ChannelMap";
inline constexpr const char* pszINIMontage = "Montage";
inline constexpr const char* pszINIRecorded = "Recorded";
/// @}

} // namespace kvsig
