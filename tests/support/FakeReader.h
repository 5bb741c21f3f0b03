#pragma once

#include "kvsig/kernel/DataReader.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kvsig::test {

/// What a scripted recording says of a channel. Facts that are not set stay with the base's
/// default, as in a format whose files do not state them.
struct FakeChannel {
    std::string grid1 = "";
    std::string grid2 = "Ref";
    double calibration = 1.0;
    double dcOffset = 0.0;
    std::optional<std::string> name = std::nullopt;
    std::optional<std::string> units = std::nullopt;
    std::optional<short> type = std::nullopt;
    std::optional<double> physioLow = std::nullopt, physioHigh = std::nullopt;
    std::optional<std::int32_t> digitalLow = std::nullopt, digitalHigh = std::nullopt;
};

enum class FakeChunks { bySample, byByte, neither };

/// The "file" behind a FakeReader.
struct FakeRecording {
    std::vector<FakeChannel> channels = {{"Fp1"}, {"Fp2"}, {"Cz"}};
    double rate = 10.0;
    long samples = 1000;                ///< what the header claims
    std::optional<long> stored = {};    ///< what is really there; the claim when not set
    int sampleBytes = 2;                ///< 2 or 4
    std::optional<int> minReadPts = {}; ///< step from chunk to chunk; else the base's
    std::optional<int> chunkPts = {};   ///< samples that one chunk read fills; else the base's
    FakeChunks chunks = FakeChunks::bySample;
    std::vector<SampleTime> anchors = {};
    bool openFails = false, channelInfoFails = false, sampleInfoFails = false;
    /// The raw count of a sample.
    std::function<std::int32_t(int channel, long index)> raw;
    /// Frames that a chunk read writes, of those that are there; else all of them.
    std::function<int(long first, int available)> deliver;
    /// Frames that a chunk read says it has written; else what it has.
    std::function<int(long first, int written)> claim;

    FakeRecording();
};

/// A reader of nothing, scripted by its FakeRecording. It keeps a log of every call of a format's
/// operations ("openFile", "_grid1(0)", "getSampleChunk(20)", "getChunk(120, 60)").
///
/// On the stack it is used as it is; on the heap it counts references like any reader.
class FakeReader : public DataReader {
  public:
    explicit FakeReader(FakeRecording recording = {});
    ~FakeReader() override;

    FakeRecording file;
    std::vector<std::string> calls;
    bool* destroyed = nullptr; ///< set by the destructor
    std::optional<long> lag;   ///< of the samples; a reader has none unless it is set

    /// The logged calls that start with `prefix`; the log is empty afterwards.
    std::vector<std::string> takeCalls(const std::string& prefix = "");
    /// The recording grows (or shrinks) while it is open.
    void setSamples(long count);
    /// The count that the file holds, by the rule of getData(): 0 outside the recording.
    std::int32_t rawAt(int channel, long index) const;

    bool openFile() override;
    void close() override;
    bool loadChannelInfo() override;
    bool readSampleInfo() override;
    bool getPatientRec() override;
    void setPageDuration(double seconds) override;
    int bytesPerSample() override { return file.sampleBytes; }
    bool hasSampleLag() override { return lag.has_value(); }
    long getSampleLag() override { return lag.value_or(0); }
    void setSampleLag(long samples) override { lag = samples; }
    int chunkPts() override;
    int getSampleChunk(long firstSample, short* buffer) override;
    int getChunk(long bytePos, short* buffer, int bytes) override;

    using DataReader::clearSampleTimes;
    using DataReader::filePath;
    using DataReader::pageAtIndex;
    using DataReader::readPageAtIndex;
    using DataReader::refuse;
    using DataReader::setMaxDataIndex;

  protected:
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

  private:
    const FakeChannel& logged(const char* call, int channel);
    int writeFrames(long first, int wanted, short* buffer);
};

} // namespace kvsig::test
