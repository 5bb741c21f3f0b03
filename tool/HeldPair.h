#pragma once

#include "kvsig/kernel/ReaderPtr.h"
#include "kvsig/readers/SyncReader.h"

#include <vector>

namespace kvsig::tool {

/// The pair that a HeldPair stands for: a base of its own, so that it outlives the SyncReader which
/// closes its members.
struct KeptPair {
    ReaderPtr kept;
};

/// A pair whose slower member's values are those of HeldSamples. The pair itself spreads them over
/// each range that it is asked for, so that they depend on where a range begins; commands read in
/// windows, and windows must join.
class HeldPair final : private KeptPair, public SyncReader {
  public:
    /// Another face of the same two members, which open() opens again.
    HeldPair(const SyncReader& pair, const ReaderPtr& owner)
        : KeptPair{owner}, SyncReader(pair.first(), pair.second()) {}

    /// Adds to `out` when `accumulate` is set, whichever member the channel is of.
    int getData(int channel, long first, long last, float* out, double gain,
                int accumulate) override;

  private:
    std::vector<float> m_own; ///< the slower member's samples, at its own rate
};

/// `reader`, or in place of an open pair of two rates a HeldPair; null when that does not open.
[[nodiscard]] ReaderPtr withHeldSamples(const ReaderPtr& reader);

} // namespace kvsig::tool
