#pragma once

#include "kvsig/readers/EDF90Reader.h"

namespace kvsig {

/// BDF recordings ("BDF (*.bdf)"): EDF's header, 24-bit samples, 32-bit frames.
///
/// sampleCount() is half again as long as the recording, whose end storedSampleCount() tells.
/// Recordings of mixed rates deliberately read as flat zeros; a warning says so at open.
class KVSIG_API BDFReader : public EDF90Reader {
  public:
    /// True when the file's version field is BDF's: 0xFF "BIOSEMI".
    static bool isFileType(const char* path);

    bool openFile() override;
    int bytesPerSample() override;

  protected:
    const RecordLayout* recordLayout() override;
    [[nodiscard]] int storedSampleBytes() const override;
    void demuxRecord(const std::byte* record, std::size_t bytes, short* frames) override;
};

} // namespace kvsig
