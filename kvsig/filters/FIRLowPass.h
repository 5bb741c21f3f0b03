#pragma once

#include "kvsig/filters/FIRFilter.h"

namespace kvsig {

/// A windowed-sinc low pass: half amplitude (-6 dB) at the cutoff.
class KVSIG_API FIRLowPass : public FIRFilter {
  public:
    FIRLowPass() : FIRFilter(lowPass) {}
};

} // namespace kvsig
