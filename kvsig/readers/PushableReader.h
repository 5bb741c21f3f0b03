#pragma once

#include "kvsig/readers/InterleavedReader.h"

#include <cstddef>
#include <string>
#include <vector>

namespace kvsig {

/// An interleaved recording ("PushableData") whose samples do not come from its file but from a
/// buffer that the host hands over before each page is read. It may describe several part files.
class KVSIG_API PushableReader : public InterleavedReader {
  public:
    PushableReader();

    /// Hands over the 16-bit frames of the next page that is read, whichever that is: they are
    /// copied once, then nothing is pending. `data` stays the host's and must live until then; null
    /// takes back what was pending. Bytes past the page are not used, missing ones are zeros; a
    /// negative count is 0.
    void pushBuffer(const void* data, int bytes);

    /// Appends a part file (of its path 260 characters count) of a duration in seconds.
    void addPart(const char* file, double seconds);

    /// 0 without parts.
    int fileCount() override;
    /// An index equal to the number of parts is not outside, on purpose; it answers an empty text
    /// and 0. Outside are null and 0.
    const char* partFileName(int part) override;
    long partSampleCount(int part) override;
    double partDuration(int part) override;
    /// Notes when nothing is pushed yet: until then all samples are zeros.
    bool openFile() override;
    int getSampleChunk(long firstSample, short* buffer) override;

  protected:
    /// One chunk is one page.
    int _minReadPts() override;

  private:
    struct Part {
        std::string file;
        double seconds = 0.0;
    };

    [[nodiscard]] const Part* findPart(int part) const;

    std::vector<Part> m_parts;
    const void* m_pending = nullptr;
    std::size_t m_pendingBytes = 0;
};

} // namespace kvsig
