#pragma once

#include "StraightPager.h"
#include "kvsig/kvsig.h"

#include <span>
#include <string>
#include <vector>

namespace kvsig::bench {

/// Paging as a host does it: a montage with filters, asked row by row or for all rows at once.
class KvsigPager {
  public:
    explicit KvsigPager(const std::string& path);

    [[nodiscard]] std::int64_t pages() const;
    void page(std::int64_t index);
    void allRows(std::int64_t index);
    void flushCaches() { m_montage.flushCache(); }
    /// The first parts of page(), over the same samples: the rows before filtering, and the
    /// channels that the rows are made of.
    void unfiltered(std::int64_t index);
    void channelsOnly(std::int64_t index);
    [[nodiscard]] std::span<const float> row(std::size_t index) const { return m_rows[index]; }
    [[nodiscard]] std::size_t callerBytes() const;
    /// The filters in use.
    [[nodiscard]] PagingChain chain() const;

  private:
    [[nodiscard]] long firstOf(std::int64_t index) const;

    ReaderPtr m_reader;
    SourceMontage m_montage;
    long m_pageLength = 0; ///< samples
    long m_runIn = 0;
    std::vector<std::vector<float>> m_rows;
    std::vector<float*> m_rowPointers;
    std::vector<float> m_work;
};

} // namespace kvsig::bench
