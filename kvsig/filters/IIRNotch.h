#pragma once

#include "kvsig/filters/IIRFilter.h"

namespace kvsig {

/// Takes one frequency out; it rings long, so it wants a long run-in.
class KVSIG_API IIRNotch : public IIRFilter {
  public:
    IIRNotch() : IIRFilter(notch) {}

    /// Twenty periods of the cutoff frequency, at most maxPrePts.
    int nPrePts() const override;
    int nPstPts() const override;
};

} // namespace kvsig
