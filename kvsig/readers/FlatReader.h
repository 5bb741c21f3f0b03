#pragma once

#include "kvsig/kernel/DataReader.h"
#include "kvsig/util/Export.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace kvsig {

struct FlatEvent;
struct FlatRecording;

/// The base of formats that are integers at offsets: frames of all channels or runs of single ones,
/// in any number of pieces, of 8, 16 or 32 bits, signed or not, in either byte order, at one rate
/// or several. A format parses its headers in describe() and hands over a FlatRecording (see
/// kvsig/readers/FlatRecording.h); samples, anchors, calibration, patient and events then work.
/// That header is not installed: readers of the library derive from this class, a host's from
/// DataReader.
///
/// Pages have 32-bit values where 16 bits do not carry what is stored less its zero; nothing is
/// ever clipped. A description whose samples leave the file is refused.
class KVSIG_API FlatReader : public DataReader {
  public:
    FlatReader();
    ~FlatReader() override;

    bool openFile() override;
    void close() override;
    bool readSampleInfo() override;
    bool getPatientRec() override;
    int readEvents(std::deque<ClientEvent>& events) override;
    int bytesPerSample() override;
    /// No page is longer than the chunks that hold the whole recording.
    void setPageDuration(double seconds) override;
    int chunkPts() override;
    int getSampleChunk(long firstSample, short* buffer) override;
    double storedSamplingRate(int channel) override;
    /// Seconds by which the clock time of an anchor may differ from what is due, behind `seconds`
    /// since the anchor before, though there is no pause: what the steps of the recorder's clock
    /// and its drift against the samples explain. Half a sample when samples are what it counts.
    [[nodiscard]] double clockTolerance(double seconds) const;

  protected:
    /// Each track is a group where channels stand apart; a track of frames that holds all of them
    /// is read in chunks.
    std::span<const int> channelsStoredWith(int channel) override;
    std::int64_t readPlanes(int channel, long first, std::int64_t count,
                            const SamplePlanes& planes) override;

    /// Parses the file at filePath() and fills `recording`. On failure calls refuse() and returns
    /// false; oddities go through report().
    virtual bool describe(FlatRecording& recording) = 0;
    /// Appends the recording's events, in any order; those outside the recording are dropped
    /// afterwards, one at its very end (the sample behind the last) is kept.
    virtual void listEvents(std::vector<FlatEvent>& events);

    /// The description that the last describe() gave; empty when it failed.
    [[nodiscard]] const FlatRecording& recording() const;
    /// The sample nearest to a clock time (seconds since midnight of the recording's first day). Of
    /// several segments that hold the time it is that of the one that began last; in a pause it is
    /// the first one of the segment that begins next; nothing outside the recording by half a
    /// sample or more.
    [[nodiscard]] std::optional<std::int64_t> sampleAt(double clock) const;
    /// The clock time of a sample as its own segment counts it; not bounded by the recording.
    [[nodiscard]] double clockAt(std::int64_t sample) const;

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
    struct State;

    bool accept();
    void reportOddFacts();
    void addAnchors();
    [[nodiscard]] bool holdsShownChannels();

    std::unique_ptr<State> m_flat;
};

} // namespace kvsig
