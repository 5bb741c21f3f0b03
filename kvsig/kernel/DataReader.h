#pragma once

#include "kvsig/kernel/IDataReader.h"
#include "kvsig/kernel/OpenFinding.h"
#include "kvsig/kernel/PathInfo.h"
#include "kvsig/kernel/SamplePlanes.h"
#include "kvsig/util/Export.h"

#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace kvsig {

struct ChannelRecord;
struct DataPage;
struct RecordLayout;
class SourceMontage;

/// The base of every format reader: one instance stands for one open recording. A format supplies
/// its file's facts through the pure operations and raw frames through getSampleChunk() or
/// getChunk() (at least one of the two); everything else has a working default here. The operations
/// of IDataReader are documented there.
class KVSIG_API DataReader : public IDataReader {
  public:
    /// @{
    /// Defaults of a channel record.
    static const std::int16_t m_defChannelType;
    static const char* const m_defChannelUnits;
    static const std::int32_t m_defDigitalHigh;
    static const std::int32_t m_defDigitalLow;
    static const double m_defPhysioHigh;
    static const double m_defPhysioLow;
    /// @}

    /// The file type that an attribute file names, copied to `out` (size - 1 characters at most);
    /// false when it names none.
    static bool readFileType(std::istream& stream, char* out, int size);
    /// Whether a file is a recording of this class, by its name or content. Formats that can tell
    /// have their own.
    static bool isFileType(const char* path);

    DataReader();
    DataReader(const DataReader&) = delete;
    DataReader& operator=(const DataReader&) = delete;

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    /// Both answer 0 on purpose, not the new count.
    ULONG AddRef() override;
    ULONG Release() override;

    int fileType() override;
    void setFileType(int type) override;
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
    std::intptr_t getItem(int item, int a, int b) override;
    void setItem(int item, int a, int b, std::uintptr_t value) override;
    bool open(const char* path) override;
    int getLastError() override;
    void setLastError(int code) override;
    int chunkPts() override;
    int getSampleChunk(long firstSample, short* buffer) override;
    int getData(int channel, long first, long last, float* out, double gain,
                int accumulate) override;
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

    virtual ~DataReader();

  protected:
    /// @{
    /// What the file itself says of a channel. loadChannelInfo() copies the answers into the
    /// channel table; texts may live in shared buffers, they are copied at once.
    virtual int _isMapReferential();
    virtual const char* _refGrid();
    virtual const char* _grid1(int channel) = 0;
    virtual const char* _grid2(int channel) = 0;
    virtual const char* _channelName(int channel);
    virtual double _calibration(int channel) = 0;
    virtual double _dcOffset(int channel) = 0;
    virtual short _channelType(int channel);
    virtual const char* _channelUnits(int channel);
    virtual double _physioHigh(int channel);
    virtual double _physioLow(int channel);
    virtual std::int32_t _digitalHigh(int channel);
    virtual std::int32_t _digitalLow(int channel);
    /// @}

    /// Samples from one chunk to the next.
    virtual int _minReadPts();

  public:
    /// The byte-addressed chunk read: `bytePos` counts from the first sample of the recording as if
    /// it were stored in frames. Returns bytes, 0 at the end.
    virtual int getChunk(long bytePos, short* buffer, int bytes);
    /// Fills `montage` with a montage that the recording holds; here nothing.
    virtual void montageApply(SourceMontage& montage, const char* name);
    /// Gives channels without a record in the channel table one of defaults.
    virtual bool setDefChannelInfo();
    /// Fills the channel table from what the file says: part of open(). While a channel map is in
    /// force the names stay.
    virtual bool loadChannelInfo();
    /// Puts the channel map of a section in force; false without such a section.
    virtual bool readChannelMap(std::istream& stream, const char* section);
    /// Appends a time anchor, its time moved past the last one's by whole days; one that has no
    /// finite time, or whose sample is not behind the last one's, is ignored.
    virtual void addSampleTime(SampleTime& anchor);
    virtual const char* channelMapName(); ///< The channel map's name as it was set.
    virtual long maxDataIndex();          ///< The last sample's index; -1 without samples.
    virtual long nPoints();               ///< maxDataIndex() + 1.
    virtual double xStart();              ///< Seconds of the first sample: 0.
    virtual double xEnd();                ///< Seconds at which the last sample ends.
    /// What is added after the calibration; kept, not applied.
    virtual double dcOffset(int channel);
    /// @{
    /// What a format's openFile() found: channels, hertz, bytes before the first sample. Values
    /// that do not fit saturate.
    virtual void setChannelCount(int count);
    virtual void setSamplingRate(double hertz);
    virtual void setHeaderLength(long bytes);
    /// @}
    virtual void setPaths(const char* text);  ///< Splits a list of paths at ';'.
    virtual std::vector<PathInfo> getPaths(); ///< The paths that setPaths() gave.
    /// @{
    /// How far a recording is moved against another, in samples; here there is none.
    virtual bool hasSampleLag();
    virtual long getSampleLag();
    virtual void setSampleLag(long lag);
    /// @}

    /// The samples that the file really holds; differs from sampleCount() only where the kernel's
    /// own count is deliberately another.
    virtual long storedSampleCount();

    /// The rate at which the file stores a channel, in hertz; getData() may repeat its samples to
    /// reach the common samplingRate(). 0 out of range.
    virtual double storedSamplingRate(int channel);

    /// What is odd in the file beyond openFindings(), by a look at all its bytes; the reader need
    /// not be open, a file that does not open is looked at as far as its structure goes.
    virtual std::vector<OpenFinding> inspectFile();

  protected:
    /// The code of the sample encoding, as attribute files of raw recordings give it.
    virtual int dataTypeCode();

    /// Where the raw samples of the open recording stand in its file, when they stand in records
    /// of one shape and chunk reads give exactly these samples as frames. getData() then takes them
    /// from the file by the shortest way, without any chunk read. Null: chunk reads it is. A class
    /// that derives from a reader and makes chunks of its own overrides this to return null. The
    /// layout stays the reader's and valid until the recording is closed.
    virtual const RecordLayout* recordLayout();

    /// The channels whose samples stand together with those of `channel` in the file, itself among
    /// them, ascending, of channels below channelCount(): a file that holds channels apart from
    /// each other is read by these groups, through readPlanes(), instead of chunk reads of all, as
    /// long as both give the same samples. None: chunk reads it is, for every channel. A class that
    /// derives from a reader and makes chunks of its own overrides this to return none. Valid until
    /// the recording is closed or its channel count set.
    virtual std::span<const int> channelsStoredWith(int channel);
    /// Reads samples `first` and the `count` - 1 behind it of the channels that are stored with
    /// `channel`. Returns how many of each arrived, from `first` on: fewer where the file ends.
    virtual std::int64_t readPlanes(int channel, long first, std::int64_t count,
                                    const SamplePlanes& planes);

  public:
    /// The last failure in one sentence that names the file, the field and the value; empty after
    /// success. Valid until the next call on this reader.
    const char* lastErrorText();

    /// The path as it was given, uncut.
    [[nodiscard]] const std::string& filePath() const;

    /// What the last open() noticed without failing, in the order in which it was found.
    [[nodiscard]] const std::vector<OpenFinding>& openFindings() const;

    /// Copies the raw counts of samples `first`..`last` (inclusive) of a channel, by the rules of
    /// getData(): samples outside the recording are 0. Returns the number of counts written.
    int getRawData(int channel, long first, long last, std::int32_t* out);

  protected:
    /// The page that holds a sample, read if need be; null where there is none.
    DataPage* pageAtIndex(long index);
    /// Fills `page` with the frames from sample `index` on.
    bool readPageAtIndex(DataPage* page, long index);

    /// Takes the recording's path from the attribute file's key "File"; without one refuses as
    /// readAttributeFile() does.
    bool readDataFileName(std::istream& stream);
    /// Stores that the attribute file's section "FileInfo" has no such key, logs it and returns
    /// false.
    bool refuseWithout(const char* key, std::istream& stream);
    /// The names in the channel table stand for names of the file from now on: those that an
    /// attribute file gave to a recording which has none of its own.
    void keepChannelNames();
    /// These names; default ones for channels without; null out of range.
    const ChannelRecord* keptNames(int channel);
    /// Sets the last sample's index: a format's readSampleInfo() does.
    void setMaxDataIndex(long index);
    /// No samples, no pages and no page length any more: what was open before must not answer for
    /// another file.
    void forgetSamples();
    /// Forgets all time anchors.
    void clearSampleTimes();
    /// Forgets anchors and patient. What is set from here on belongs to the recording that the next
    /// open() opens, whatever its path.
    ///
    /// open() itself does this, after openFile(), when the path is another one than that of the
    /// recording opened before. A reader that has opened none, attempts that failed not counted,
    /// keeps them: they are what an attribute file or the host said of the recording to come.
    void forgetRecording();
    /// Names are the file's own again at the next loadChannelInfo().
    void dropChannelMap();
    /// The same, and the channel table holds the default names; none are kept.
    void resetChannelNames();
    /// Stores the error code with a sentence about what was wrong (the file's name is added), logs
    /// the sentence, or `diagnostic` in its place, and returns false.
    bool refuse(int code, const std::string& what, const std::string& diagnostic = {});
    /// Adds a finding of this open(); warnings and worse are logged with the file's name.
    void report(OpenFinding::Severity severity, const std::string& what);

  private:
    struct KVSIG_LOCAL State;

    void updateMapFlags();
    void useStoredMap(const char* name);
    void reportIgnoredNames();
    ChannelRecord* channelRecord(int channel);
    std::vector<std::string> storedNames();
    void mapFileChanges(const char* name);
    template <typename Consume>
    int forEachRun(int channel, long first, long last, Consume consume);

    std::unique_ptr<State> m_state;
};

} // namespace kvsig
