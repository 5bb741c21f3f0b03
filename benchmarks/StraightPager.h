#pragma once

#include "StraightFile.h"
#include "StraightLanes.h"

#include <span>

namespace kvsig::bench {

/// The limit of paging: decode the channels of the rows, subtract, run the three recurrences over
/// each row: page() one row after the other, sideBySide() all rows in vector lanes.
class StraightPager {
  public:
    StraightPager(const std::string& path, const PagingChain& chain);

    [[nodiscard]] std::int64_t pages() const;
    void page(std::int64_t index);
    void sideBySide(std::int64_t index);
    /// Plain reading of the page's bytes.
    void fetch(std::int64_t index);
    [[nodiscard]] std::span<const float> row(std::size_t index) const;
    [[nodiscard]] std::size_t callerBytes() const;

  private:
    void decode(std::int64_t index);
    [[nodiscard]] const float* samples(int channel) const;

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
