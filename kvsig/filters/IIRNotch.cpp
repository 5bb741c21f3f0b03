#include "kvsig/filters/IIRNotch.h"

namespace kvsig {

int IIRNotch::nPrePts() const {
    constexpr int periods = 20;
    const int period = IIRFilter::nPrePts();
    return period > maxPrePts / periods ? maxPrePts : period * periods;
}

int IIRNotch::nPstPts() const { return 0; }

} // namespace kvsig
