#pragma once

#include "kvsig/kernel/DataReader.h"
#include "kvsig/util/Export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace kvsig {

namespace edf {
struct Channel;
class Header;
} // namespace edf

/// EDF and continuous EDF+ recordings ("EDF90 (*.edf)"), 16-bit samples.
///
/// The annotation signal of an EDF+ file is no channel, and its texts are not decoded. Interrupted
/// recordings (EDF+D) are refused. Signals of different rates are shown at the fastest channel's
/// rate, the slower ones' samples repeated.
class KVSIG_API EDF90Reader : public DataReader {
  public:
    EDF90Reader();
    ~EDF90Reader() override;

    /// True when the file's version field is EDF's.
    static bool isFileType(const char* path);

    std::uint32_t miscFlags() const override;
    bool openFile() override;
    void close() override;
    bool readSampleInfo() override;
    bool getPatientRec() override;
    bool patientInfo(std::ostream& stream, bool flag) override;
    long storedSampleCount() override;
    double storedSamplingRate(int channel) override;
    std::vector<OpenFinding> inspectFile() override;
    /// One data record, turned into frames.
    int getChunk(long bytePos, short* buffer, int bytes) override;

  protected:
    /// Bytes of the thread_local buffers in which texts are handed out; the widest is a label.
    static constexpr int labelSize = 17;

    const char* _grid1(int channel) override;
    const char* _grid2(int channel) override;
    const char* _channelName(int channel) override;
    double _calibration(int channel) override;
    double _dcOffset(int channel) override;
    short _channelType(int channel) override;
    const char* _channelUnits(int channel) override;
    double _physioHigh(int channel) override;
    double _physioLow(int channel) override;
    std::int32_t _digitalHigh(int channel) override;
    std::int32_t _digitalLow(int channel) override;
    int _minReadPts() override;
    const RecordLayout* recordLayout() override;

    /// Bytes of a sample in the file.
    [[nodiscard]] virtual int storedSampleBytes() const;
    /// Turns a whole data record into frames of bytesPerSample() values.
    virtual void demuxRecord(const std::byte* record, std::size_t bytes, short* frames);

    /// The 16-byte label of a file signal, without trailing blanks.
    [[nodiscard]] std::string signalLabel(std::int64_t fileSignal) const;
    [[nodiscard]] bool mixedRates() const; ///< Whether signals shown as channels differ in rate.

  private:
    struct State;

    [[nodiscard]] bool isChannel(int channel) const;
    [[nodiscard]] const edf::Channel& factsOf(int channel) const;
    void layOutChannels();
    bool layOutRecords();
    [[nodiscard]] bool isOneOfOurs() const;
    [[nodiscard]] std::int64_t chunkBytes();
    void reportOddFields();
    void reportOddCalibrations();
    bool refuseHeader(const edf::Header& fixedPart);
    bool refuseWithoutSamples();
    [[nodiscard]] std::int64_t wholeRecords(int sampleBytes) const;

    std::unique_ptr<State> m_edf;
};

} // namespace kvsig
