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
    char first[32];        ///< first name; the start of the whole name when `fullName` is set
    char mi[3];            ///< middle initial
    char last[32];         ///< last name
    std::int16_t fullName; ///< nonzero: one whole name runs over first, mi and last (67 bytes)
    char sex[8];           ///< as the recording writes it
    char hand[8];          ///< handedness
    char birthDate[12];    ///< a date as text
    char id[20];           ///< the patient's number
    char testDate[12];     ///< date of the recording
    char testTime[15];     ///< start of the recording
    char physician[40];    ///< of the recording
    char technician[40];   ///< who recorded
    char medications[200]; ///< as noted
    char history[200];     ///< as noted
    char comments1[200];   ///< free text
    char comments2[200];   ///< more of it
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
