#pragma once

#include "tool/synth/Generators.h"
#include "tool/synth/Random.h"

#include <cstdint>

namespace kvsig::tool {

/// The heart's potential between the arms: about 70 beats a minute, faster with each breath in.
class Heart {
  public:
    Heart(std::uint64_t seed, double rate);

    /// The next sample in uV.
    float next();

  private:
    double nextInterval();

    Waveform m_beat;
    Random m_random;
    double m_step;
    double m_sinceBeat = 0;
    double m_breath = 0; ///< phase, 0 to 1
    double m_interval;
};

} // namespace kvsig::tool
