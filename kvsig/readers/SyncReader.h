#pragma once

#include "kvsig/kernel/IDataReader.h"
#include "kvsig/util/Export.h"

#include <memory>

namespace kvsig {

/// Two recordings made side by side, shown as one: the channels of the first reader, then those of
/// the second, all at the higher of the two sampling rates. Samples of the slower reader are held.
///
/// Time base, length, patient and events are those of the first recording alone: sampleCount() is
/// its own count, at its own rate. Samples of the second reader are shifted by the sample lag
/// (getItem(2), setItem(2); samples of the common rate): sample s of the pair is its sample
/// s - lag. What a pair has no answer of its own to, and what a missing member would answer, is
/// answered as by a reader without a recording.
///
/// The host owns the two members, which must outlive the pair: the pair counts no references to
/// them, and its last Release() closes them but does not destroy them. Each member opens the file
/// of its own fileName().
class KVSIG_API SyncReader : public IDataReader {
  public:
    /// Either may be null; open() then fails.
    SyncReader(IDataReader* first, IDataReader* second);
    SyncReader(const SyncReader&) = delete;
    SyncReader& operator=(const SyncReader&) = delete;

    /// @{
    /// The members, as they were given.
    [[nodiscard]] IDataReader* first() const;
    [[nodiscard]] IDataReader* second() const;
    /// @}

    /// Why open() failed, in one sentence that names the member's file; empty after success. Valid
    /// until the next call on this reader.
    const char* lastErrorText();

    /// Does not count a reference, on purpose.
    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    /// Both answer 0 on purpose, not the new count.
    ULONG AddRef() override;
    ULONG Release() override;

    /// The mark of a pair, without the formats in it.
    int fileType() override;
    void setFileType(int type) override;
    /// The name that the pair was given; after a failed open() that of the member which failed.
    const char* fileName() override;
    void setFileName(const char* name) override;
    long headerLength() override;
    short channelCount() override;
    int fileCount() override;
    const char* partFileName(int part) override;
    long partSampleCount(int part) override;
    double partDuration(int part) override;
    double samplingRate() override;
    long sampleCount() override;
    double duration() override;
    int isMapReferential() override;
    const char* refGrid() override;
    double channelSamplingRate(int channel) override;
    long channelSampleCount(int channel) override;
    short channelType(int channel) override;
    short channelSubType(int channel) override;
    const char* channelUnits(int channel) override;
    const char* grid1(int channel) override;
    const char* grid2(int channel) override;
    /// A name that only the second reader knows gets that reader's own channel number, on purpose:
    /// it is not shifted behind the first reader's channels.
    int indexOfG1(const char* name) override;
    int indexOfG2(const char* name) override;
    const char* channelName(int channel) override;
    double calibration(int channel) override;
    double physioHigh(int channel) override;
    double physioLow(int channel) override;
    std::int32_t digitalHigh(int channel) override;
    std::int32_t digitalLow(int channel) override;
    bool zeroChannel(int channel) override;
    void setZeroChannel(int channel, bool zero) override;
    bool gridNamesAsNumbers() override;
    void setGridNamesAsNumbers(bool numbers) override;
    std::uint32_t miscFlags() const override;
    bool onEdit() override;
    /// 1: there is a sample lag; 2: the lag; unknown items answer 0.
    std::intptr_t getItem(int item, int a, int b) override;
    void setItem(int item, int a, int b, std::uintptr_t value) override;
    /// `path` only names the pair.
    bool open(const char* path) override;
    bool openFile() override;
    void close() override;
    int getLastError() override;
    void setLastError(int code) override;
    int chunkPts() override;
    /// Frames of the first reader; none where they would not fit a buffer made for the pair.
    int getSampleChunk(long firstSample, short* buffer) override;
    /// Stretched samples are stored even when `accumulate` is set, on purpose: gain and
    /// accumulation act on the slower reader's samples before they are stretched, which stay from
    /// one call to the next. So a difference of two channels of the same slower reader over the
    /// same range comes out right, one across the two readers does not. A range too short for even
    /// one sample of the slower reader leaves `out` as it was and still returns its length.
    int getData(int channel, long first, long last, float* out, double gain,
                int accumulate) override;
    bool readSampleInfo() override;
    int sampleTimeCount() override;
    void getSampleTime(int index, SampleTime& out) override;
    double getClockTime(double elapsed) override;
    double getElapsedTime(double clock) override;
    bool getPatientRec() override;
    bool hasPatientInfo() override;
    bool patientInfo(std::ostream& stream, bool flag) override;
    PatientRec* patientRec() override;
    bool getPatientName(char* out) override;
    bool testInfo(std::ostream& stream) override;
    int readEvents(std::deque<ClientEvent>& events) override;
    bool updateState(const ClientEvent& event) override;
    bool updateState(const ClientEvent& event, int channel) override;
    int montageCount() override;
    const char* montageName(int index) override;
    int montageIndex(const char* name) override;
    bool montageDefn(int index, std::ostream& stream) override;
    short getMaxPages() override;
    void setMaxPages(short count) override;
    int getPagePts() override;
    void setPageDuration(double seconds) override;
    void flushPages(bool incompleteOnly) override;
    const char* builtinChannelMapName(int index) override;
    const char* getChannelMapName() override;
    int getChannelMapCount() override;
    const char* getChannelMapNames(int index) override;
    bool applyChannelMapDefn(const char* name, std::istream& defn) override;
    bool getChannelMapDefn(const char* name, std::ostream& stream) override;
    bool addChannelMapDefn(const char* name, std::istream& defn) override;
    bool deleteChannelMapDefn(const char* name) override;
    bool readAttributeFile(std::istream& stream) override;
    bool writeAttributeFile(std::ostream& stream) override;
    int hostFlag() override;
    int hostItemFlag(int a, int b, int c) override;
    int hostChannelFlag(int a, int b) override;
    int hasChannelMap() override;
    void setChannelMapName(const char* name) override;
    int bytesPerSample() override;
    bool isMap1010() override;
    std::uint32_t miscFlags2() const override;
    HostRecord hostRecordA(int index) override;
    HostRecord hostRecordB(int index) override;

    /// Closes both members.
    virtual ~SyncReader();

  private:
    struct State;

    std::unique_ptr<State> m_state;
};

} // namespace kvsig
