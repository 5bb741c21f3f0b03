#pragma once

#include "StraightFile.h"
#include "StraightFilters.h"

#include <span>

namespace kvsig::bench {

/// The chain of a page: low-pass, high-pass, notch, and the samples before a page with which they
/// run in.
struct PagingChain {
    Recurrence lowPass, highPass, notch;
    std::int64_t runIn;
};

/// The limit of paging: decode the channels of the rows, subtract, run the three recurrences over
/// each row, one after the other.
class StraightPager {
  public:
    StraightPager(const std::string& path, const PagingChain& chain);

    [[nodiscard]] std::int64_t pages() const;
    void page(std::int64_t index);
    /// Plain reading of the page's bytes.
    void fetch(std::int64_t index);
    [[nodiscard]] std::span<const float> row(std::size_t index) const;
    [[nodiscard]] std::size_t callerBytes() const;

  private:
    StraightFile m_file;
    PagingChain m_chain;
    std::int64_t m_pageRecords;
    std::int64_t m_runInRecords;
    std::int64_t m_length; ///< samples of a row, those of the run-in among them
    std::vector<std::vector<float>> m_channels;
    std::vector<float*> m_wanted;
    std::vector<std::vector<float>> m_rows;
};

} // namespace kvsig::bench
