#pragma once

#include <array>
#include <cstddef>
#include <optional>

namespace kvsig {

class FilterList;

/// What a recursive filter remembers: its last two inputs and outputs.
struct IIRHistory {
    float x1, x2, y1, y2;
};

/// A chain of recursive filters as one computation: a sample goes through all of them before the
/// next one does, so that the filters need not wait for each other, and rows go side by side, each
/// in a lane of the vector registers. No row's order of operations changes by that: the results are
/// those of the filters one after the other, bit by bit.
class IIRCascade {
  public:
    static constexpr int mostFilters = 8;
    /// Rows that go side by side.
    static constexpr int mostRows = 16;
    /// A block that is shorter leaves filters without a whole history.
    static constexpr int shortestBlock = 2;

    /// The histories of the chain's filters behind a row's block.
    using Histories = std::array<IIRHistory, mostFilters>;

    /// One row of a block of `count` samples. The results from sample `skip` on go to `out`, which
    /// may be `in` when nothing is skipped and no other row is there.
    struct Row {
        const float* in;
        float* out;
        Histories last; ///< is set
    };

    /// No filter: what of() gives is filled.
    IIRCascade() = default;
    /// Nothing for an empty or a longer chain, and for one that holds anything but this library's
    /// own recursive filters: a class derived from them may compute what it likes.
    [[nodiscard]] static std::optional<IIRCascade> of(const FilterList& chain);

    /// Equal computations, by whatever filter objects.
    bool operator==(const IIRCascade& other) const = default;

    /// Filters one row in place, as a block of its own, of shortestBlock samples at least.
    [[nodiscard]] Histories apply(float* data, int count) const;
    /// Filters 1 to mostRows rows of equal blocks. Whole tiles of `in` are read: it must have room
    /// for roomFor(count) floats, all of them set.
    void apply(Row* const* rows, int rowCount, int count, int skip) const;
    [[nodiscard]] static constexpr std::size_t roomFor(int count) {
        return (static_cast<std::size_t>(count) + tile - 1) / tile * tile;
    }

    /// Leaves the filters of a chain as they are behind a block of their own that ended so.
    static void remember(const FilterList& chain, const Histories& last);

    /// The weights of a filter, of first or of second order.
    struct Stage {
        int order;
        float b0, b1, b2, a1, a2;
        bool operator==(const Stage& other) const = default;
    };

    static constexpr int tile = 64; ///< samples

  private:
    std::array<Stage, mostFilters> m_stages{};
    int m_count = 0;
};

} // namespace kvsig
