#pragma once

#include "kvsig/filters/IIRFilter.h"

namespace kvsig {

/// First order: falls by 6 dB per octave above the cutoff.
class KVSIG_API IIRLowPass : public IIRFilter {
  public:
    IIRLowPass() : IIRFilter(lowPass) {}
};

} // namespace kvsig
