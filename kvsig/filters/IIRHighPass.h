#pragma once

#include "kvsig/filters/IIRFilter.h"

namespace kvsig {

/// First order: falls by 6 dB per octave below the cutoff.
class KVSIG_API IIRHighPass : public IIRFilter {
  public:
    IIRHighPass() : IIRFilter(highPass) {}
};

} // namespace kvsig
