#pragma once

#include "tool/synth/Generators.h"
#include "tool/synth/Random.h"

#include <cstdint>

namespace kvsig::tool {

/// What a polygraph records beside the EEG.
enum class SlowKind {
    breathing,   ///< a belt, in mV
    oxygen,      ///< in %
    temperature, ///< in degC
    pulse        ///< per minute
};

class SlowSignal {
  public:
    SlowSignal(SlowKind kind, double rate, std::uint64_t seed, std::uint64_t stream);

    /// The next sample in the kind's units.
    float next();

  private:
    float nextBreathing();

    SlowKind m_kind;
    double m_rate;
    Random m_random;
    LowPassNoise m_wander;
    double m_breath; ///< phase, 0 to 1
    double m_breathSeconds = 4;
    double m_depth = 1;
};

} // namespace kvsig::tool
