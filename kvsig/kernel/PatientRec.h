#pragma once

#include "kvsig/util/Export.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>

namespace kvsig {

/// The patient record of a recording: terminated 8-bit texts, all empty in a fresh record.
/// It never goes to the log or into error texts.
struct PatientRec {
    char first[32]; ///< first name; the start of the whole name when `fullName` is set
    char mi[3];     ///< middle initial
    char last[32];
    std::int16_t fullName; ///< nonzero: one whole name runs over first, mi and last (67 bytes)
    char sex[8];
    char hand[8];
    char birthDate[12];
    char id[20];
    char testDate[12];
    char testTime[15];
    char physician[40];
    char technician[40];
    char medications[200];
    char history[200];
    char comments1[200];
    char comments2[200];
    // Further fields, filled by the format readers that have them.
    char rawPatient[81];   ///< patient identification as it stands in the file
    char rawRecording[81]; ///< recording identification as it stands in the file

    /// Characters that a whole name may have.
    static constexpr int wholeNameLength = 66;
    /// Bytes that displayName() takes at most, its terminator included.
    static constexpr int displayNameSize = 68;

    /// The whole name; empty unless `fullName` is set.
    [[nodiscard]] KVSIG_API std::string name() const;
    /// Stores a whole name, cut to wholeNameLength, and sets `fullName`.
    KVSIG_API void setName(std::string_view text);
};
static_assert(std::is_trivially_copyable_v<PatientRec>);

/// The name in one piece: the whole name, or "last, first"; empty when neither is known.
[[nodiscard]] KVSIG_API std::string displayName(const PatientRec& patient);

/// Writes the record as 16 labelled lines, "Name: " to "Comments2: ". With the full-name flag set
/// "Name: " carries the whole name and "First: ", "MI: " and "Last: " stay empty.
KVSIG_API void writePatientInfo(std::ostream& stream, const PatientRec& patient);

} // namespace kvsig
