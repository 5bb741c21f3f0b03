#pragma once

#include "kvsig/filters/IIRCascade.h"

#include <array>
#include <cstddef>
#include <vector>

namespace kvsig {

class DataSource;

/// The same range of several sources, for each what its getData() gives, bit by bit, and with the
/// same left behind in caches and filters. Readers see the same calls in the same order. Sources
/// whose chains are equal and hold recursive filters alone are filtered side by side.
class RowsAtOnce {
  public:
    /// `work` holds the samples that wait for their filters; it grows as needed, up to mostRoom.
    RowsAtOnce(long first, long last, double scale, std::vector<float>& work)
        : m_first(first), m_last(last), m_scale(scale), m_work(work) {}

    /// The samples of `source` go to `buf`; they are there after finish().
    void add(DataSource& source, float* buf);
    /// The smallest count that a source delivered; 0 without sources.
    int finish();

    static constexpr std::size_t mostRoom = std::size_t{2} << 20; ///< floats

  private:
    /// A source whose samples are still to be filtered.
    struct Pending {
        DataSource* source;
        float* buf;
        IIRCascade cascade;
        std::size_t work; ///< where its samples begin in the work area
        int count;        ///< how many they are
        int before;       ///< how many of them only run the filters in
        IIRCascade::Row row;
        bool filtered;
    };

    [[nodiscard]] bool postpone(DataSource& source, float* buf);
    [[nodiscard]] bool makeRoom(int count);
    void noteCount(int delivered);
    void filterPending();
    void filterLike(Pending& model);

    static constexpr std::size_t mostPending = 2 * std::size_t{IIRCascade::mostRows};

    long m_first, m_last;
    double m_scale;
    std::vector<float>& m_work;
    std::size_t m_used = 0;
    std::array<Pending, mostPending> m_pending;
    std::size_t m_count = 0;
    int m_least = -1;
};

} // namespace kvsig
