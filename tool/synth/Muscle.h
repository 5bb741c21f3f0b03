#pragma once

#include "tool/synth/Generators.h"
#include "tool/synth/Random.h"

#include <cstdint>

namespace kvsig::tool {

/// One muscle under the electrodes: 20 to 100 Hz, in bursts of irregular length and strength.
class Muscle {
  public:
    /// `strength` scales the bursts; 1 gives about 10 uV root mean square.
    Muscle(std::uint64_t seed, std::uint64_t stream, double strength, double rate);

    /// The next sample in uV.
    float next();

  private:
    Random m_random;
    LowPassNoise m_upperEdge;
    LowPassNoise m_lowerEdge;
    Follower m_level;
    double m_strength;
    double m_rate;
    double m_target = 0;
    double m_remaining = 0; ///< samples until the burst or the rest ends
    bool m_bursting = true;
};

} // namespace kvsig::tool
