#pragma once

#include "kvsig/kernel/DataReader.h"
#include "kvsig/util/Export.h"

#include <iosfwd>
#include <memory>
#include <vector>

namespace kvsig {

/// Raw recordings without a header of their own ("Interleaved"): frames of one value per channel
/// behind a header of known length. Rate, channel count, calibration and sample encoding come from
/// the attribute file, which must be read before open(); so do channel names, anchors, patient and
/// montages.
///
/// Data type codes: 0 signed 16-bit little-endian; 4 signed 16-bit big-endian; 6 unsigned 8-bit,
/// 128 being zero. Any other reads as nothing.
class KVSIG_API InterleavedReader : public DataReader {
  public:
    InterleavedReader();
    ~InterleavedReader() override;

    std::uint32_t miscFlags() const override;
    bool openFile() override;
    void close() override;
    /// At least 1: recordings below 1 Hz have samples too.
    int chunkPts() override;
    int getSampleChunk(long firstSample, short* buffer) override;
    bool readSampleInfo() override;
    int montageCount() override;
    /// Null out of range.
    const char* montageName(int index) override;
    bool montageDefn(int index, std::ostream& stream) override;
    /// What an earlier attribute file said of names, anchors, patient and montages is forgotten. A
    /// recording that is open shows its samples by the new keys from then on; the sample count
    /// stays that of the last open(). When a key is missing, lastErrorText() names it: without
    /// "File" nothing changes, else file name, channel names and the keys before the missing one
    /// are the new ones, anchors, patient and montages still those of before.
    bool readAttributeFile(std::istream& stream) override;
    bool writeAttributeFile(std::ostream& stream) override;
    /// Adds the rows of the stored montage of that name; without one does nothing.
    void montageApply(SourceMontage& montage, const char* name) override;

  protected:
    const char* _grid1(int channel) override;
    const char* _grid2(int channel) override;
    const char* _channelName(int channel) override;
    double _calibration(int channel) override;
    double _dcOffset(int channel) override;
    int dataTypeCode() override;

  private:
    struct State;

    bool readLayout(std::istream& stream);
    void reportOddAttributes();
    bool refuseWithoutChannels();

    std::unique_ptr<State> m_raw;
};

} // namespace kvsig
