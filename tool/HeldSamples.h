#pragma once

namespace kvsig::tool {

/// How a pair shows a member at the common rate: the member's sample k from the first sample of
/// the common rate at or behind its time on, and until sample k + 1 is. Whatever range a sample is
/// read in, it shows the same.
class HeldSamples {
  public:
    /// Rates in hertz; one that is not above 0, or not below the common one, is taken for it.
    HeldSamples() = default;
    HeldSamples(double ownRate, double commonRate)
        : m_ownRate(ownRate > 0 && ownRate < commonRate ? ownRate : commonRate),
          m_commonRate(commonRate) {}

    /// Whether samples are held at all, not shown one to one.
    [[nodiscard]] bool isSlower() const { return m_ownRate < m_commonRate; }
    /// The member's sample that is shown at a sample of the common rate.
    [[nodiscard]] long at(long shown) const;
    /// Where the member's sample is shown first; its own number of samples gives theirs.
    [[nodiscard]] long firstShown(long own) const;

    /// Spreads `values`, the member's samples from at(first) to at(last), over `first`..`last`:
    /// put(offset from `first`, value).
    template <typename Value, typename Put>
    void spread(const Value* values, long first, long last, Put put) const {
        const long start = at(first);
        for (long i = first; i <= last; ++i)
            put(i - first, values[at(i) - start]);
    }

  private:
    double m_ownRate = 0.0;
    double m_commonRate = 0.0;
};

} // namespace kvsig::tool
