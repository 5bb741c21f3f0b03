#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kvsig::tool {

/// Writes time-stamped annotations lists of EDF+: "+<seconds>" 0x14 text 0x14 0x00. The first list
/// of every record holds an empty text and tells when the record begins.
class AnnotationWriter {
  public:
    AnnotationWriter() = default;
    /// For records of this length in seconds, a recording of `duration` seconds, and at most
    /// `mostTexts` texts of at most `longestText` characters in a record.
    AnnotationWriter(double recordDuration, double duration, std::size_t mostTexts,
                     std::size_t longestText);

    /// The bytes that every record needs for its lists.
    [[nodiscard]] std::size_t bytesPerRecord() const { return m_bytesPerRecord; }

    void beginRecord(double onset);
    void add(double onset, std::string_view text);
    [[nodiscard]] const std::string& bytes() const { return m_bytes; }

  private:
    int m_recordDecimals = 0; ///< those of the record duration: no record begins between them
    std::size_t m_bytesPerRecord = 0;
    std::string m_bytes;
};

} // namespace kvsig::tool
