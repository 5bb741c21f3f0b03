#pragma once

#include "kvsig/kernel/ClientEvent.h"
#include "kvsig/kernel/PatientRec.h"
#include "kvsig/kernel/SampleTime.h"
#include "kvsig/util/Com.h"
#include "kvsig/util/Export.h"

#include <cstdint>
#include <deque>
#include <iosfwd>

namespace kvsig {

/// Answer of the host record queries.
struct HostRecord {
    std::int32_t words[5] = {}; ///< zeros unless a reader knows better
};

/// {68D0E561-3BBF-11D4-809D-006008184043}
inline constexpr IID IID_IDataReader{
    0x68D0E561, 0x3BBF, 0x11D4, {0x80, 0x9D, 0x00, 0x60, 0x08, 0x18, 0x40, 0x43}};

/// A recording, open or to be opened, as a host sees it. The order of the operations is the binary
/// interface.
///
/// Objects are counted by AddRef() and Release() and destroy themselves; there is no destructor in
/// the interface. One reader is used from one thread at a time; different readers may run on
/// different threads. Failures are results (false, 0, -1, null), never exceptions.
///
/// Channels are numbered from 0. Outside 0..channelCount() - 1 text getters answer an empty text
/// and numeric ones 0. Texts are terminated 8-bit bytes as the file gives them, valid until the
/// next call on the same thread. Samples are numbered from 0 at samplingRate(); ranges are given by
/// their first and last index, both inclusive.
class IDataReader : public IUnknown {
  public:
    virtual int fileType() = 0;             ///< The format's number (registry/types/ReaderType.h).
    virtual void setFileType(int type) = 0; ///< Stamped by the allocation.
    /// At most 259 characters of the path.
    virtual const char* fileName() = 0;
    virtual void setFileName(const char* name) = 0; ///< Where openFile() looks; open() sets it.
    /// Bytes before the first sample.
    virtual long headerLength() = 0;
    virtual short channelCount() = 0; ///< Channels that the recording presents.
    /// @{
    /// The files that make up the recording; part numbers run from 0.
    virtual int fileCount() = 0;
    virtual const char* partFileName(int part) = 0;
    virtual long partSampleCount(int part) = 0;
    virtual double partDuration(int part) = 0;
    /// @}

    /// Hertz, common to all channels of getData().
    virtual double samplingRate() = 0;
    virtual long sampleCount() = 0; ///< Samples of each channel at samplingRate().
    /// Seconds; 0 when there are no samples or the rate is not greater than 0.
    virtual double duration() = 0;
    /// Nonzero when all scalp channels were recorded against one reference.
    virtual int isMapReferential() = 0;
    /// Name of the common reference electrode.
    virtual const char* refGrid() = 0;
    /// The channel's rate as getData() gives it, hertz.
    virtual double channelSamplingRate(int channel) = 0;
    virtual long channelSampleCount(int channel) = 0; ///< The channel's samples at that rate.
    /// 1: microvolts; 100: another unit, mapped linearly from digital to physical limits.
    virtual short channelType(int channel) = 0;
    /// A finer kind, as the format has it; 0 for none.
    virtual short channelSubType(int channel) = 0;
    virtual const char* channelUnits(int channel) = 0; ///< Units of the physical limits.
    virtual const char* grid1(int channel) = 0;        ///< The electrode.
    virtual const char* grid2(int channel) = 0;        ///< What it was recorded against.
    /// @{
    /// First channel whose grid 1 or grid 2 has this name (letter case ignored), or -1.
    virtual int indexOfG1(const char* name) = 0;
    virtual int indexOfG2(const char* name) = 0;
    /// @}
    virtual const char* channelName(int channel) = 0; ///< The name to show.
    /// Physical units per raw count.
    virtual double calibration(int channel) = 0;
    /// @{
    /// The physical limits and the raw counts that stand for them.
    virtual double physioHigh(int channel) = 0;
    virtual double physioLow(int channel) = 0;
    virtual std::int32_t digitalHigh(int channel) = 0;
    virtual std::int32_t digitalLow(int channel) = 0;
    /// @}

    /// @{
    /// A mark that the host sets and reads: the channel is to be shown as zeros.
    virtual bool zeroChannel(int channel) = 0;
    virtual void setZeroChannel(int channel, bool zero) = 0;
    /// @}

    /// @{
    /// When set, grids and names are channel numbers (from 1) instead of the stored texts.
    virtual bool gridNamesAsNumbers() = 0;
    virtual void setGridNamesAsNumbers(bool numbers) = 0;
    /// @}

    /// What the format can do; the library itself never asks.
    virtual std::uint32_t miscFlags() const = 0;
    /// The host's request to edit; false where there is nothing to edit.
    virtual bool onEdit() = 0;
    /// Generic host access by item number: 1 has sample lag, 2 sample lag, 3 paths (`value` is a
    /// const char*), 1000 write attribute file (`value` is a std::ostream*), 1001 address of a
    /// double holding the dc offset of channel `a`. Unknown items answer their own number.
    virtual std::intptr_t getItem(int item, int a, int b) = 0;
    /// Items 2, 3 and 1000; others are ignored.
    virtual void setItem(int item, int a, int b, std::uintptr_t value) = 0;
    /// Opens a recording; on failure getLastError() is 1 (file cannot be opened), 2 (no usable
    /// channels or samples) or 3 (unsupported variant).
    virtual bool open(const char* path) = 0;
    /// Opens fileName() and parses its header: the format's part of open().
    virtual bool openFile() = 0;
    virtual void close() = 0;                ///< Closes the file; open() may follow.
    virtual int getLastError() = 0;          ///< Of the last open(); 0 for none.
    virtual void setLastError(int code) = 0; ///< Sets what getLastError() answers.
    /// @{
    /// Samples of one chunk, and the read of one: whole frames, sample by sample, channel within
    /// sample, 16-bit or 32-bit by bytesPerSample(); returns the number of frames, 0 at the end.
    virtual int chunkPts() = 0;
    virtual int getSampleChunk(long firstSample, short* buffer) = 0;
    /// @}

    /// Writes samples `first`..`last` (inclusive) of a channel, calibrated and multiplied by
    /// `gain`, to `out` (last - first + 1 floats), or adds them when `accumulate` is nonzero.
    /// Samples before 0 and past the end are zeros. Returns the number of values produced,
    /// zeros included; 0 for an empty range and for one of more than 2^31 - 1 samples.
    virtual int getData(int channel, long first, long last, float* out, double gain,
                        int accumulate) = 0;
    /// Takes length and start anew from the file, where the format can without being opened again:
    /// part of open().
    virtual bool readSampleInfo() = 0;
    /// The anchors of the time base: clock times of samples, in their order.
    virtual int sampleTimeCount() = 0;
    /// Fills `out`; out of range it stays as it is.
    virtual void getSampleTime(int index, SampleTime& out) = 0;
    /// @{
    /// Seconds since midnight of the recording day <-> seconds from sample 0.
    virtual double getClockTime(double elapsed) = 0;
    virtual double getElapsedTime(double clock) = 0;
    /// @}

    /// Reads the patient record from the file; false when there is none to read.
    virtual bool getPatientRec() = 0;
    virtual bool hasPatientInfo() = 0; ///< Whether patientInfo() has something to write.
    /// Writes the patient record as labelled lines.
    virtual bool patientInfo(std::ostream& stream, bool flag) = 0;
    /// The reader's own record.
    virtual PatientRec* patientRec() = 0;
    /// `out`: at least 68 bytes. False when no name is known.
    virtual bool getPatientName(char* out) = 0;
    /// Writes file, duration, channels and rate as labelled lines.
    virtual bool testInfo(std::ostream& stream) = 0;
    /// Appends the recording's events and returns how many.
    virtual int readEvents(std::deque<ClientEvent>& events) = 0;
    /// @{
    /// Offers an event of the host to the reader, or to one channel; true when something changed.
    virtual bool updateState(const ClientEvent& event) = 0;
    virtual bool updateState(const ClientEvent& event, int channel) = 0;
    /// @}

    /// @{
    /// Montages stored in the recording.
    virtual int montageCount() = 0;
    virtual const char* montageName(int index) = 0;
    /// @}
    virtual int montageIndex(const char* name) = 0; ///< By name, letter case ignored; -1 for none.
    /// Writes a montage as a section of derivations; false when there is none.
    virtual bool montageDefn(int index, std::ostream& stream) = 0;
    /// @{
    /// The page cache: pages at most, samples per page, and the duration that sets them (seconds).
    virtual short getMaxPages() = 0;
    virtual void setMaxPages(short count) = 0;
    virtual int getPagePts() = 0;
    virtual void setPageDuration(double seconds) = 0;
    /// @}

    /// Drops all pages, or only the last one when it is incomplete (a recording that grows).
    virtual void flushPages(bool incompleteOnly) = 0;
    /// Channel maps give electrode names to channel numbers. Named ones are kept in the map file,
    /// "kvunkdat.ini" in the current folder. Names are compared without regard to letter case. Two
    /// are built in: 0 is "(Default)", no map, the names that the recording itself has; 1 is
    /// "(Private)", the map that the attribute file holds. Any other index gives "".
    virtual const char* builtinChannelMapName(int index) = 0;
    /// The map in force: a built-in name or the one that it was applied by, stored or not.
    virtual const char* getChannelMapName() = 0;
    /// Reads the list of stored maps and returns their number plus the 2 built in.
    virtual int getChannelMapCount() = 0;
    /// 0 and 1 are the built-in names, then come the stored maps in file order, as
    /// getChannelMapCount() found them; "" outside. Valid until getChannelMapCount(),
    /// addChannelMapDefn() or deleteChannelMapDefn() is called on this reader.
    virtual const char* getChannelMapNames(int index) = 0;
    /// Puts a map in force that `defn` holds as a section "[name]" (for "(Private)" also as
    /// "[ChannelMap]"); "(Default)" takes the map away and reads nothing. False when there is none.
    virtual bool applyChannelMapDefn(const char* name, std::istream& defn) = 0;
    /// Writes a map as such a section: a stored one, the recording's own names for "(Default)", or
    /// for "(Private)" the map in force, if it is that. False, and nothing written, without one.
    virtual bool getChannelMapDefn(const char* name, std::ostream& stream) = 0;
    /// Stores the lines "name=number" of `defn` as a map of at most 31 characters' name, in place
    /// of an old one. False for the built-in names, for names that cannot stand in the file and
    /// when it cannot be written; the file is then as it was.
    virtual bool addChannelMapDefn(const char* name, std::istream& defn) = 0;
    /// True when there is no stored map of that name any more, even if there was none.
    virtual bool deleteChannelMapDefn(const char* name) = 0;
    /// Reads what an attribute file says of a recording: its file name, which fileName() then
    /// gives, and a channel map; of raw recordings also how their samples lie, anchors, patient and
    /// montages. It is read before open(), which leaves the mapped names alone. False when a key is
    /// missing that the recording needs.
    virtual bool readAttributeFile(std::istream& stream) = 0;
    /// Writes what readAttributeFile() reads, montages left out. A map in force is written by its
    /// name; the private one and one that is not stored with all names, so that these read back. By
    /// name alone, channels that a stored map leaves out come back as "Ch<n>". False when the
    /// stream has failed.
    virtual bool writeAttributeFile(std::ostream& stream) = 0;
    /// @{
    /// Queries of the host that the library itself never asks; 1 unless a reader knows better.
    virtual int hostFlag() = 0;
    virtual int hostItemFlag(int a, int b, int c) = 0;
    virtual int hostChannelFlag(int a, int b) = 0;
    /// @}

    /// Nonzero while a channel map is in force.
    virtual int hasChannelMap() = 0;
    /// Puts a stored map in force; "(Default)" takes the map away. Any name that is not stored
    /// leaves the channel names as they are.
    virtual void setChannelMapName(const char* name) = 0;
    /// Bytes of a raw sample in a chunk or page: 2 or 4.
    virtual int bytesPerSample() = 0;
    /// True when the recording names its electrodes T7, T8, P7, P8.
    virtual bool isMap1010() = 0;
    /// @{
    /// More of them; 0 and zeros unless a reader knows better.
    virtual std::uint32_t miscFlags2() const = 0;
    virtual HostRecord hostRecordA(int index) = 0;
    virtual HostRecord hostRecordB(int index) = 0;
    /// @}

  protected:
    ~IDataReader() = default;
};

} // namespace kvsig
