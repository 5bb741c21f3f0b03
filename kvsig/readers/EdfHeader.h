#pragma once

#include "kvsig/readers/HeaderBlock.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The header of EDF, EDF+ and BDF files: ASCII fields of fixed width, padded with blanks.
/// Facts: B. Kemp et al., "A simple format for exchange of digitized polygraphic recordings",
/// Electroenceph. clin. Neurophysiol. 82 (1992), and its EDF+ successor (2003).
namespace kvsig::edf {

/// A field of the fixed part: offset from the start of the file, and width, in bytes.
struct Field {
    int offset;
    int width;
};
inline constexpr Field version{0, 8};
inline constexpr Field patientId{8, 80};
inline constexpr Field recordingId{88, 80};
inline constexpr Field startDate{168, 8};      ///< dd.mm.yy
inline constexpr Field startTime{176, 8};      ///< hh.mm.ss
inline constexpr Field headerLength{184, 8};   ///< byte position of the first data record
inline constexpr Field reserved{192, 44};      ///< "EDF+C" or "EDF+D" in EDF+ files
inline constexpr Field recordCount{236, 8};    ///< -1 while recording
inline constexpr Field recordDuration{244, 8}; ///< seconds
inline constexpr Field signalCount{252, 4};
inline constexpr int fixedLength = 256;
static_assert(signalCount.offset + signalCount.width == fixedLength);

/// A field that every signal has. All signals' values of one field stand together: `before` is the
/// sum of the widths of the fields before it.
struct SignalField {
    int before;
    int width;
};
inline constexpr SignalField label{0, 16};
inline constexpr SignalField units{96, 8}; ///< after 80 bytes of transducer type
inline constexpr SignalField physicalMin{104, 8};
inline constexpr SignalField physicalMax{112, 8};
inline constexpr SignalField digitalMin{120, 8};
inline constexpr SignalField digitalMax{128, 8};
inline constexpr SignalField samplesPerRecord{216, 8}; ///< after 80 bytes of prefiltering
inline constexpr int signalLength = 256;               ///< 32 reserved bytes stand at the end
static_assert(samplesPerRecord.before + samplesPerRecord.width + 32 == signalLength);

/// Bytes that the header of so many signals takes.
[[nodiscard]] inline std::int64_t fullLength(std::int64_t signals) {
    return fixedLength + signalLength * signals;
}

/// Which kind of EDF the reserved field declares.
enum class Kind : std::int32_t { plain = 0, continuous = 1, interrupted = 2 };

/// A header parsed as far as the data layout needs it; the other fields are read when asked for.
/// A pure value: knows no file and validates nothing. Numbers are 64-bit.
class Header {
  public:
    Header() = default;
    explicit Header(HeaderBlock block);

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] std::int64_t dataOffset() const { return m_dataOffset; }
    [[nodiscard]] std::int64_t fileSignals() const { return m_fileSignals; }
    [[nodiscard]] double duration() const { return m_recordDuration; } ///< of a record, s

    /// File signals that are channels: all of them, less the annotation signals in EDF+.
    [[nodiscard]] const std::vector<std::int64_t>& channels() const { return m_channels; }
    /// Samples in a data record, by file signal, and their sum.
    [[nodiscard]] const std::vector<std::int64_t>& signalSamples() const { return m_signalSamples; }
    [[nodiscard]] std::int64_t recordSamples() const { return m_recordSamples; }

    [[nodiscard]] std::string text(Field field) const;
    [[nodiscard]] std::string text(SignalField field, std::int64_t fileSignal) const;
    /// The same without a copy; valid as long as the header.
    [[nodiscard]] std::string_view view(Field field) const;
    [[nodiscard]] std::string_view view(SignalField field, std::int64_t fileSignal) const;
    /// Offset of a signal's field from the start of the file, for messages.
    [[nodiscard]] std::int64_t offsetOf(SignalField field, std::int64_t fileSignal) const;

  private:
    HeaderBlock m_block;
    Kind m_kind = Kind::plain;
    std::int64_t m_dataOffset = 0;
    std::int64_t m_fileSignals = 0;
    std::int64_t m_recordSamples = 0;
    double m_recordDuration = 0.0;
    std::vector<std::int64_t> m_channels;
    std::vector<std::int64_t> m_signalSamples;
};

/// The reserved field says EDF+ or BDF+, whichever file it stands in.
[[nodiscard]] bool declaresPlus(const Header& header);

/// The signal's label is that of EDF+'s or BDF+'s annotations, whether or not it is a channel.
[[nodiscard]] bool isAnnotation(const Header& header, std::int64_t fileSignal);

/// Bytes of a data record; signals of fewer than 0 samples count as empty.
[[nodiscard]] std::int64_t recordBytes(const Header& header, int sampleBytes);

} // namespace kvsig::edf
