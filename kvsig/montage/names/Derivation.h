#pragma once

#include "kvsig/util/Export.h"

/// Derivation definitions: the short texts that describe the rows of a montage.
///
///   Gap...                a spacer row (case-sensitive)
///   A1+A2, F3:0.5+F4:0.5  an average, optionally weighted: contains "+"
///   Fp1-0.5*F7-0.5*T3     numeric: a "*" before the first "|"
///   Fp1-F7, C3, Fp1-F7|x  bipolar or referential; the text after "|" holds settings
///
/// Null texts count as empty. Nothing here allocates for the caller; over-long texts are cut.
namespace kvsig {

/// Bytes that electrode name buffers must have: 15 characters and the terminator.
inline constexpr int gridNameSize = 16;
/// Bytes that the output of NameFromG1G2() and NameFromDefn() never exceeds.
inline constexpr int derivationNameSize = 512;

/// @{
/// Which of the kinds above a definition is; asked in this order they tell them apart.
KVSIG_API bool IsGapDefn(const char* defn);
KVSIG_API bool IsAvgDefn(const char* defn);
KVSIG_API bool IsNumericDefn(const char* defn);
/// @}

/// Splits a bipolar definition and returns the number of names found: 0, 1 or 2.
///
/// The derivation is the text before the first "|", at most 31 characters of it. `grid1` receives
/// what stands before its first "-", `grid2` all that follows, further hyphens included; both are
/// gridNameSize bytes and are written only when found. `rest`, if not null, receives everything
/// after the "|" that ends the derivation, uncut: it must have room for strlen(defn) + 1 bytes and
/// is left alone when there is no "|".
KVSIG_API int ParseG1G2(const char* defn, char* grid1, char* grid2, char* rest);

/// Writes "grid1-grid2" into `out` (derivationNameSize bytes at most).
KVSIG_API void NameFromG1G2(const char* grid1, const char* grid2, char* out);

/// Writes the display name of any definition into `out` (derivationNameSize bytes at most): eight
/// blanks for a gap, "grid1-grid2" with `ref` for a missing grid2, and for an average the bare
/// names one after the other without a separator ("A1+A2" is "A1A2").
KVSIG_API void NameFromDefn(const char* defn, const char* ref, char* out);

/// Cuts the weight off one term of an average: "F3:0.5" becomes "F3", `weight` 0.5, result true.
/// Without ":" the result is false and nothing changes.
KVSIG_API bool YankAvgWgt(char* term, double& weight);

} // namespace kvsig
