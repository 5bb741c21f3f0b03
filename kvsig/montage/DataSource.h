#pragma once

#include "kvsig/filters/FilterList.h"
#include "kvsig/filters/IIRHighPass.h"
#include "kvsig/filters/IIRLowPass.h"
#include "kvsig/montage/DataCache.h"
#include "kvsig/montage/SourceSettings.h"
#include "kvsig/util/Export.h"

#include <cstdint>

namespace kvsig {

class IDataReader;
class MontageContext;

/// Sets what useCache() and useFilter() of new sources start with; both are on at first.
KVSIG_API void SetDataSourceDefaults(bool useCache, bool useFilter);

/// A displayed channel: computes samples from a reader, runs them through its filter chain and
/// keeps the last block computed. Sample ranges are inclusive at both ends and count at the
/// reader's common rate. The reader and the montage are not owned and must outlive the source.
/// One source is used from one thread at a time, its reader and montage with it. Texts handed out
/// are valid until the next call of the source or its reader.
class KVSIG_API DataSource {
  public:
    virtual ~DataSource();

    /// The reader's type of the source's channel.
    virtual short type() = 0;
    virtual const char* grid1() = 0; ///< The electrode, or an average's own name.
    virtual const char* grid2() = 0; ///< What it is shown against; may be empty.
    virtual const char* name() = 0;  ///< The name to show.
    /// Writes the derivation definition, with the settings after "|" when asked for and when they
    /// are not the defaults. `out`: at most definitionSize bytes are written.
    virtual void constructDefn(char* out, bool withSettings) = 0;
    /// @{
    /// Whether the last block is kept, and whether getData() filters.
    virtual bool useCache();
    virtual bool useFilter();
    /// @}

    /// Gives the source other channels of the reader.
    virtual void setChannel12(int channel1, int channel2) = 0;
    virtual void setName(const char* name) = 0; ///< An empty one brings the derivation's name back.
    virtual void setUseCache(bool use);         ///< See useCache().
    /// A change empties the cache: its samples were computed with the other setting.
    virtual void setUseFilter(bool use);
    /// The raw computation: samples `first`..`last` times `scale` into `buf`, unfiltered. Returns
    /// how many were delivered.
    virtual int _getData(long first, long last, float* buf, double scale) = 0;
    /// Makes room for a range and notes it as held at `scale`. False, and the cache is as it was,
    /// without memory and for a range that is empty or has indices of more than 32 bits.
    virtual bool allocCache(long first, long last, double scale);
    /// Copies the part of the request that the cache holds from its start on, rescaled, and returns
    /// its length.
    virtual int readCache(long first, long last, float* buf, double scale);
    /// Replaces what the cache holds.
    virtual bool writeCache(long first, long last, float* buf, double scale);
    /// Adds to the cached samples if the range is exactly the one that is held.
    virtual bool addToCache(long first, long last, float* buf);
    virtual void flushCache(); ///< Forgets the samples that are kept.

    static constexpr int definitionSize = 4096; ///< bytes of a definition with its settings

    /// Samples `first`..`last` times `scale` into `buf` (last - first + 1 floats), filtered when
    /// useFilter() is on. Returns how many were delivered; what is missing is zeros. An empty range
    /// and one of more than 2^31 - 1 samples give 0 and leave `buf` alone; one that leaves no
    /// indices or no memory for what the filters want around it is all zeros and gives 0.
    int getData(long first, long last, float* buf, double scale);

    /// Streaming: sets the next sample to be delivered (held inside 32 bits) and warms the filters
    /// up before it. The filters carry the stream's state: after a getData() that they had a part
    /// in, and after one of another source that shares them, the position must be set again.
    void iterSetPosition(long position, double scale);
    /// Delivers the next `count` samples, with the filter state carried on; never uses the cache.
    int iterGetData(long count, float* buf, double scale);
    /// The next sample of the stream; -1 before there is one.
    [[nodiscard]] long iterGetPosition() const { return m_position; }

    /// @{
    /// Seconds.
    [[nodiscard]] double xStart() const;
    [[nodiscard]] double xEnd() const;
    [[nodiscard]] double xDuration() const { return xEnd() - xStart(); }
    /// @}

    /// Where the samples come from.
    [[nodiscard]] IDataReader* reader() const { return m_reader; }
    /// @{
    /// The montage that the source belongs to; null for none.
    [[nodiscard]] MontageContext* montage() const { return m_montage; }
    void setMontage(MontageContext* montage) { m_montage = montage; }
    /// @}

    /// The chain that getData() applies.
    [[nodiscard]] FilterList* filters() { return &m_filters; }
    /// The block computed last.
    [[nodiscard]] DataCache* cache() { return &m_cache; }

    /// @{
    /// Bit 0: a gap row, which every reference operation skips.
    [[nodiscard]] std::uint16_t kind() const { return m_kind; }
    void setKind(std::uint16_t kind) { m_kind = kind; }
    [[nodiscard]] bool isGap() const { return (m_kind & 1U) != 0; }
    /// @}

    /// @{
    /// New settings change neither the chain nor the cache; see appendOwnFilters().
    [[nodiscard]] const SourceSettings& settings() const { return m_settings; }
    void setSettings(const SourceSettings& settings) { m_settings = settings; }
    /// @}

    /// Appends the source's own low-pass and high-pass, as far as its settings switch them on (with
    /// a cutoff that is finite and above 0), to its chain, designed for `samplingRate` (hertz; at
    /// one not above 0 they stay as they are), switches filtering on and empties the cache. The
    /// source owns these filters: the chain must not (FilterList::deleteList()).
    void appendOwnFilters(double samplingRate);

  protected:
    explicit DataSource(IDataReader& reader); ///< Starts with what SetDataSourceDefaults() says.
    /// @{
    /// Copies copy the cached samples. A copied chain owns no filters; where the original's own
    /// filters stand in it, the copy's own take their place. An assignment first lets go of the
    /// filters held before, deleting them when the chain owns them.
    DataSource(const DataSource& other);
    DataSource& operator=(const DataSource& other);
    /// @}

    /// Takes over the settings, neither chain nor cache.
    void copyAttributes(const DataSource& other);

  private:
    int filteredData(long first, long last, float* buf, double scale);
    void copyChain(const DataSource& other);

    FilterList m_filters;
    std::uint16_t m_kind = 0;
    IDataReader* m_reader = nullptr;
    MontageContext* m_montage = nullptr;
    bool m_useCache = true;
    bool m_useFilter = true;
    SourceSettings m_settings;
    IIRLowPass m_ownLowPass;
    IIRHighPass m_ownHighPass;
    DataCache m_cache;
    std::int32_t m_position = -1;
};

} // namespace kvsig
