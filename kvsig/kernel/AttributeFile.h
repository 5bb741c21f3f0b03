#pragma once

#include "kvsig/kernel/PatientRec.h"
#include "kvsig/kernel/SampleTime.h"
#include "kvsig/util/Export.h"

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The sections of attribute files: INI-style texts that go with a recording. Values are written in
/// one line (line ends in them become blanks) and numbers as the shortest text that reads back the
/// same; the stream's flags and locale play no part.
namespace kvsig {

/// How the samples of a file without a header are laid out.
struct RawLayout {
    double samplingRate = 0.0; ///< hertz
    long headerLength = 0;     ///< bytes before the first sample
    double calibration = 0.0;  ///< physical units per raw count
    int waveformCount = 0;
    int dataType = 0; ///< code of the sample encoding
};

/// The "[FileInfo]" section.
struct FileInfo {
    std::string file;
    std::string typeName;
    std::optional<RawLayout> layout;
    std::optional<long> sampleLag;
    std::string channelMap; ///< name of the map in force; empty for none
};

KVSIG_API void writeFileInfo(std::ostream& stream, const FileInfo& info);

/// A heading in brackets, then each name with its number from 1. A name that would not read back is
/// changed: "=", "|" and line ends become "_", so does "[" or ";" in front; a single name is joined
/// with `reference`, or with "Ref" when that is empty or the name is none of a scalp electrode, but
/// for default names "Ch<n>"; of equal names the second gets "2_" in front.
KVSIG_API void writeChannelNames(std::ostream& stream, std::string_view heading,
                                 const std::vector<std::string>& names, std::string_view reference);

KVSIG_API void writePatientSection(std::ostream& stream, const PatientRec& patient);
/// Takes over the fields that the section holds.
KVSIG_API void readPatientSection(std::istream& stream, PatientRec& patient);

/// Clock times are written with three decimals.
KVSIG_API void writeSampleTimes(std::ostream& stream, const std::vector<SampleTime>& anchors);
/// Lines that scan as "%i=%lf"; a sample index may be hexadecimal (0x) or octal (0).
[[nodiscard]] KVSIG_API std::vector<SampleTime> readSampleTimes(std::istream& stream);
/// Hands out those lines as anchors; `take` says whether one counts. Returns a sentence about the
/// lines that do not, and one about times that are a number by their beginning only.
[[nodiscard]] KVSIG_API std::vector<std::string>
takeSampleTimes(std::istream& stream, const std::function<bool(SampleTime& anchor)>& take);

} // namespace kvsig
