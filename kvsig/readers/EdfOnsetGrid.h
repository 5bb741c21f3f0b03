#pragma once

#include "kvsig/kernel/OpenFinding.h"
#include "kvsig/readers/EdfHeader.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace kvsig::edf {

/// Follows the onsets of a file's data records from the first to the last: each record starts where
/// the one before it ends, the first on the second of the start time.
class OnsetGrid {
  public:
    explicit OnsetGrid(const Header& header);

    /// The onset of the next record; empty when it tells none. Such a record counts as in place.
    void add(std::optional<double> onset);

    /// The first gaps and overlaps in full, the others by number.
    [[nodiscard]] std::vector<OpenFinding> findings() const;

  private:
    struct Jump {
        std::int64_t record; ///< the one behind it, from 1
        double due;          ///< seconds from the start time
        double length;       ///< seconds; negative: an overlap
    };

    const Header& m_header;
    std::int64_t m_records = 0;
    std::int64_t m_withoutOnset = 0;
    std::int64_t m_sinceOnset = 0; ///< records
    std::int64_t m_moreGaps = 0;
    std::int64_t m_moreOverlaps = 0;
    double m_firstOnset = 0.0;
    std::optional<double> m_lastOnset;
    std::vector<Jump> m_jumps;
};

} // namespace kvsig::edf
