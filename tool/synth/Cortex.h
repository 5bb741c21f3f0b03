#pragma once

#include "tool/synth/Block.h"
#include "tool/synth/Electrodes.h"
#include "tool/synth/Generators.h"
#include "tool/synth/Random.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kvsig::tool {

/// The brain's part of the recording: irregular activity of regions all over the scalp, and the
/// rhythms, above all the posterior alpha rhythm that comes with closed eyes.
class Cortex {
  public:
    Cortex(std::uint64_t seed, double rate);

    [[nodiscard]] std::size_t sourceCount() const { return m_regions.size() + m_rhythms.size(); }

    /// The share of a source's potential that an electrode picks up: a bell over the distance.
    [[nodiscard]] float weight(std::size_t source, const Electrode& electrode) const;

    /// The next samples of every source in uV; `rest` (0 to 1, one per sample) lets alpha grow.
    void advance(std::span<const float> rest, std::span<Block> sources);

  private:
    struct Site {
        float x, y, reach;
    };

    struct Region {
        Site site;
        Random random;
        LowPassNoise slow;
        Rhythm theta;
        Rhythm beta;
        float slowSize, thetaSize, betaSize; ///< uV, root mean square
    };

    struct Oscillation {
        Site site;
        Random random;
        Rhythm rhythm;
        LowPassNoise swelling;
        float size; ///< uV, root mean square at full strength
        bool needsRest;
    };

    static void fill(Region& region, std::size_t count, Block& values);
    static void fill(Oscillation& oscillation, std::span<const float> rest, Block& values);

    std::vector<Region> m_regions;
    std::vector<Oscillation> m_rhythms;
};

} // namespace kvsig::tool
