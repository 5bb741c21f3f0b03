#pragma once

#include "kvsig/filters/FilterAttr.h"
#include "kvsig/filters/IIRHighPass.h"
#include "kvsig/filters/IIRLowPass.h"
#include "kvsig/filters/IIRNotch.h"
#include "kvsig/kernel/ClientEvent.h"
#include "kvsig/montage/MontageContext.h"
#include "kvsig/util/Export.h"

#include <memory>
#include <string>
#include <vector>

namespace kvsig {

class AvgSource;
class DataSource;
class G1G2Source;
class IDataReader;

/// Keeps the first place of the virtual table for the destructor, before what MontageContext adds.
class KVSIG_API MontageBase {
  public:
    virtual ~MontageBase() = default;
};

/// The ordered rows that a host displays for one open recording, and a second list of averages that
/// rows may use as their reference.
///
///   SourceMontage montage;
///   montage.setReader(reader.get());
///   if (montage.createMontage("Double banana"))
///       montage.source(0)->getData(first, last, buffer, 1.0);
///
/// A montage owns its sources, and its own filter objects, which stand in the chains of many rows.
/// It does not own the reader, which must live as long as there are sources over it. Gap rows are
/// skipped by all that concerns references. Names are compared without regard to letter case. Null
/// texts count as empty. A montage is used from one thread at a time, its reader with it.
class KVSIG_API SourceMontage : public MontageBase, public MontageContext {
  public:
    SourceMontage();
    ~SourceMontage() override;
    SourceMontage(const SourceMontage&) = delete;
    SourceMontage& operator=(const SourceMontage&) = delete;

    virtual IDataReader* reader(); ///< Null before setReader().
    virtual const char* name();    ///< What createMontage() or setName() gave it.
    /// The reference that isReferential() found; empty when it found none.
    virtual const char* ref();
    /// @{
    /// These three act on every row; flushCache() on the averages as well.
    virtual void flushCache();
    virtual void setUseCache(bool use);
    virtual void setUseFilter(bool use);
    /// @}

    /// Sources made before keep the reader that they were made for.
    virtual void setReader(IDataReader* reader);
    /// At most 31 characters are kept.
    virtual void setName(const char* name);
    /// Deletes every row and every average.
    virtual void deleteSources();
    /// Deletes a row or an average of this montage; anything else is ignored. The place of an
    /// average stays empty (avgRef() is null there), so that ids that idOfChannel2() gave for
    /// others hold. Rows that had it as their reference keep its id, which means no grid 2 any
    /// more: they are channel 1 against its recording reference. Names that they were given stay.
    virtual void deleteSource(DataSource* source);
    /// Builds what a derivation definition (names/Derivation.h) describes: an average is appended
    /// to the averages, all else to the rows. Null when a name in it is unknown or there is no
    /// reader. Settings after "|" become the row's; updateFilters() puts them to work. Kinds are
    /// tried in the order gap, numeric, average, row; but what holds a "*" and is no arithmetic
    /// over known electrodes may still be a row of electrodes with a "*" in their names. The
    /// average of a numeric row is called "_av" and avgRefCount(), whatever others are called.
    virtual DataSource* createSource(const char* defn);
    /// Appends a plain average; null without a reader, beyond maxAverages, and over a recording of
    /// more than G1G2Source::averageBit channels (logged once), where a row's channel 2 could not
    /// tell averages from channels.
    virtual AvgSource* createSource(std::vector<int>& channels);
    /// Appends a row over two channels of the reader; null without a reader.
    virtual G1G2Source* createSource(int channel1, int channel2);
    /// One row per channel of the reader; returns 1, or 0 without a reader.
    virtual int createRecordedMontage();
    /// Fills the montage by name: "Recorded", a montage of the files (MontageFiles.h), or one that
    /// the recording itself holds. Returns nonzero on success and 0 when nothing was made. What
    /// could not be made of it is left out: see unresolved().
    virtual int createMontage(const char* name);
    /// The first row whose display name begins with `name`; without one, for a name that begins
    /// with a digit, the number that it spells minus 1, whether there is such a row or not; else
    /// -1.
    virtual int indexOfName(const char* name);
    /// The first row of that display name. Without one, for an electrode of the reader, the first
    /// row named by the electrode against its recording reference; else -1.
    virtual int indexOfFullName(const char* name);
    virtual int indexOfAvgRef(const char* name); ///< The first average of that name, or -1.
    /// What a row's channel 2 is for a reference of that name: an average (its index with
    /// G1G2Source::averageBit set), else a channel of the reader, else -1.
    virtual int idOfChannel2(const char* name);
    /// True when the rows have one reference in common, which becomes ref(): all scalp electrodes
    /// have it, or more than half of all rows, on purpose, so that a few bipolar rows do no harm.
    /// Never true for a recording of bipolar channels. A montage named "Recorded" is not looked at:
    /// it has the recording's reference, even after changeReference() moved its rows. A host that
    /// wants them judged gives it another name.
    virtual bool isReferential();
    /// True for an average of the montage and for an electrode of the reader; `id`, if not null,
    /// then receives idOfChannel2().
    virtual bool isValidReference(const char* name, int* id);
    /// Gives the rows that stand against their recording reference another one; false when it is
    /// not valid. Null gives every row its recording reference back, bipolar rows too. Rows that
    /// already have another reference keep it: give null first. For recordings with one reference:
    /// of recorded pairs it subtracts channels and names the rows by electrode all the same, so
    /// that "C3-C4" of C3-A2 and C4-A1 is C3-A2 less C4-A1. See IDataReader::isMapReferential().
    virtual bool changeReference(const char* ref);
    /// Adds the averages of gGlobalAvgRefs whose electrodes the recording has.
    virtual void addGlobalAvgRefs();
    /// Takes over a display setting (kinds 3 to 7 of ClientEvent). With an empty label it is the
    /// montage's own, and the sensitivity that of every row there is: an empty montage keeps none
    /// for rows to come. With a label it is the row's of that name, which then follows the montage
    /// no more; the filters that it followed until then become its own. Kind 7 brings its defaults
    /// back, following included; kind 6 changes no row, as a row has no notch of its own.
    /// Sensitivities are whole numbers here; those below 1 become 1. A notch becomes 1 Hz wide
    /// to either side at -3 dB, at the rate of the reader. No value, or none above 0, switches off.
    /// Filters are rebuilt and caches emptied. True when something changed.
    virtual bool updateState(const ClientEvent& event);

    /// Samples `first`..`last` (both inclusive, at the reader's common rate) of all rows: what
    /// source(i)->getData(first, last, rows[i], scale) gives one after the other, bit by bit, gap
    /// rows, caches and the filters' states included, but several times as fast where rows have
    /// equal filters, as the montage-wide ones are. `rows` holds sourceCount() pointers to buffers
    /// of last - first + 1 floats, none of which overlap; a null pointer leaves its row out.
    /// Returns the smallest count that a row delivered; 0 when there is no row to deliver and for
    /// null `rows`. Up to 8 MiB of working memory are kept. Like all of a montage, it is used from
    /// one thread at a time.
    int getData(long first, long last, float* const* rows, double scale);

    /// Rebuilds the filter chain of every row from the settings of the montage and of the row:
    /// low-pass, high-pass, notch. A setting whose cutoff is not finite or not above 0 is off, and
    /// so is a notch whose `second` is below 0. A notch whose `second` is 0 has no width and
    /// filters nothing: notchWidthFrequency() (FilterDesign.h) gives one. Switches the rows' caches
    /// on, whatever SetDataSourceDefaults() said, and their filtering where there is a filter and
    /// off where there is none. createMontage() does it too, so call setUseCache() after it; to be
    /// called after a change of settings.
    void updateFilters();

    /// @{
    /// Settings in hertz. What is called the low filter in the field is the high-pass.
    [[nodiscard]] FilterAttr lowPass() const { return m_lowPassAttr; }
    [[nodiscard]] FilterAttr highPass() const { return m_highPassAttr; }
    [[nodiscard]] FilterAttr notch() const { return m_notchAttr; }
    void setLowPass(FilterAttr attr) { m_lowPassAttr = attr; }
    void setHighPass(FilterAttr attr) { m_highPassAttr = attr; }
    void setNotch(FilterAttr attr) { m_notchAttr = attr; }
    /// @}

    /// @{
    /// Rows in display order, and averages, the places of deleted ones counted; null out of range
    /// and where an average was deleted. Rows keep samples of an average in
    /// their caches: after its setWeights() or setAvgChannels(), call flushCache().
    [[nodiscard]] int sourceCount() const;
    [[nodiscard]] DataSource* source(int index) const;
    [[nodiscard]] int avgRefCount() const;
    [[nodiscard]] AvgSource* avgRef(int index) const;
    /// @}

    /// Averages that a montage can hold: as many as a row's channel 2 can tell apart.
    static constexpr int maxAverages = 0x1000;

    /// Definitions that could not be resolved since the montage was last emptied, as they were
    /// given, electrode names translated; the first few thousand.
    [[nodiscard]] const std::vector<std::string>& unresolved() const { return m_unresolved; }

  protected:
    /// Fills the montage from the content of a template: "AvgRef" and "Channel" elements with the
    /// attributes "Definition" and "Name". Returns the count of sources that the elements made.
    int createMontageXML(const char* text);

  private:
    AvgSource* averageReference(int index) override;
    int rowOf(const DataSource& source) override;

    [[nodiscard]] int fill(const std::string& name);
    [[nodiscard]] int rowNamed(const std::string& name) const;
    [[nodiscard]] bool canHoldAverages();
    void moveReference(G1G2Source& row, int channel2);
    void forgetAverage(int index);

    FilterAttr m_lowPassAttr;
    IIRLowPass m_lowPass;
    FilterAttr m_highPassAttr;
    IIRHighPass m_highPass;
    FilterAttr m_notchAttr;
    IIRNotch m_notch;
    char m_name[32] = "";
    char m_ref[32] = "";
    IDataReader* m_reader = nullptr;
    std::vector<std::unique_ptr<DataSource>> m_sources;
    std::vector<std::unique_ptr<AvgSource>> m_averages;
    std::vector<std::string> m_unresolved;
    bool m_toldNoAverages = false;
    std::vector<float> m_rowWork; ///< kept from one getData() to the next
};

} // namespace kvsig
