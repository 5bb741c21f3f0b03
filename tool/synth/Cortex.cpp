#include "tool/synth/Cortex.h"

#include "tool/synth/StableMath.h"

#include <algorithm>
#include <array>

namespace kvsig::tool {
namespace {

struct RegionPlace {
    float x, y, reach;
    float slow, theta, beta; ///< uV, root mean square
};

constexpr auto regionPlaces = std::to_array<RegionPlace>({
    // the whole head
    {0.00F, 0.40F, 0.80F, 2.5F, 1.6F, 0.6F},
    {-0.30F, -0.30F, 0.80F, 2.5F, 1.6F, 0.4F},
    {0.30F, -0.30F, 0.80F, 2.5F, 1.6F, 0.4F},
    // frontal, with the most beta
    {-0.28F, 0.75F, 0.30F, 4.0F, 2.4F, 1.8F},
    {0.28F, 0.75F, 0.30F, 4.0F, 2.4F, 1.8F},
    {-0.35F, 0.42F, 0.28F, 3.5F, 2.6F, 2.4F},
    {0.35F, 0.42F, 0.28F, 3.5F, 2.6F, 2.4F},
    {0.00F, 0.35F, 0.26F, 3.5F, 3.0F, 2.2F},
    // frontotemporal and temporal
    {-0.70F, 0.40F, 0.30F, 4.0F, 2.6F, 1.6F},
    {0.70F, 0.40F, 0.30F, 4.0F, 2.6F, 1.6F},
    {-0.82F, -0.05F, 0.30F, 4.0F, 3.0F, 1.5F},
    {0.82F, -0.05F, 0.30F, 4.0F, 3.0F, 1.5F},
    {-0.65F, -0.50F, 0.30F, 4.0F, 3.0F, 1.2F},
    {0.65F, -0.50F, 0.30F, 4.0F, 3.0F, 1.2F},
    // central
    {-0.42F, 0.05F, 0.28F, 3.2F, 2.6F, 2.2F},
    {0.42F, 0.05F, 0.28F, 3.2F, 2.6F, 2.2F},
    {0.00F, -0.02F, 0.26F, 3.2F, 3.0F, 2.0F},
    // parietal and occipital
    {-0.34F, -0.42F, 0.28F, 3.5F, 3.0F, 1.4F},
    {0.34F, -0.42F, 0.28F, 3.5F, 3.0F, 1.4F},
    {0.00F, -0.42F, 0.26F, 3.5F, 3.0F, 1.4F},
    {-0.28F, -0.78F, 0.30F, 4.0F, 3.0F, 1.2F},
    {0.28F, -0.78F, 0.30F, 4.0F, 3.0F, 1.2F},
});

struct RhythmPlace {
    float x, y, reach;
    float size; ///< uV, root mean square
    double frequency;
    double bandwidth;
    bool needsRest;
};

constexpr auto rhythmPlaces = std::to_array<RhythmPlace>({
    // Alpha: one generator under both occipital lobes, one in each, one more in front of them.
    {0.00F, -0.95F, 0.36F, 16.0F, 10.0, 0.9, true},
    {-0.33F, -0.82F, 0.33F, 13.0F, 9.9, 1.0, true},
    {0.33F, -0.82F, 0.33F, 13.5F, 10.1, 1.0, true},
    {0.00F, -0.42F, 0.34F, 3.5F, 10.3, 1.0, true},
    // Mu over the hands' areas does not mind open eyes.
    {-0.42F, 0.02F, 0.18F, 2.2F, 10.8, 0.9, false},
    {0.42F, 0.02F, 0.18F, 2.2F, 10.6, 0.9, false},
});

constexpr float alphaWithOpenEyes = 0.14F;

} // namespace

Cortex::Cortex(std::uint64_t seed, double rate) {
    std::uint64_t stream = 300;
    for (const RegionPlace& p : regionPlaces)
        m_regions.push_back({{p.x, p.y, p.reach},
                             Random(seed, stream++),
                             LowPassNoise(1.8, rate),
                             Rhythm(6.0, 4.5, rate),
                             Rhythm(19.0, 9.0, rate),
                             p.slow,
                             p.theta,
                             p.beta});
    for (const RhythmPlace& p : rhythmPlaces)
        m_rhythms.push_back({{p.x, p.y, p.reach},
                             Random(seed, stream++),
                             Rhythm(p.frequency, p.bandwidth, rate),
                             LowPassNoise(0.15, rate),
                             p.size,
                             p.needsRest});
}

float Cortex::weight(std::size_t source, const Electrode& electrode) const {
    const Site& site = source < m_regions.size() ? m_regions[source].site
                                                 : m_rhythms[source - m_regions.size()].site;
    const double distance = distanceBetween(site.x, site.y, electrode.x, electrode.y) / site.reach;
    return static_cast<float>(stableExp(-0.5 * distance * distance));
}

void Cortex::advance(std::span<const float> rest, std::span<Block> sources) {
    std::size_t source = 0;
    for (Region& region : m_regions)
        fill(region, rest.size(), sources[source++]);
    for (Oscillation& oscillation : m_rhythms)
        fill(oscillation, rest, sources[source++]);
}

void Cortex::fill(Region& region, std::size_t count, Block& values) {
    for (std::size_t k = 0; k < count; ++k) {
        // One draw to the statement: compilers differ in the order inside an expression.
        values[k] = region.slowSize * region.slow.next(region.random.gaussian());
        values[k] += region.thetaSize * region.theta.next(region.random.gaussian());
        values[k] += region.betaSize * region.beta.next(region.random.gaussian());
    }
}

void Cortex::fill(Oscillation& oscillation, std::span<const float> rest, Block& values) {
    for (std::size_t k = 0; k < rest.size(); ++k) {
        const float rhythm = oscillation.rhythm.next(oscillation.random.gaussian());
        const float swelling = 1 + 0.4F * oscillation.swelling.next(oscillation.random.gaussian());
        const float strength =
            oscillation.needsRest ? alphaWithOpenEyes + (1 - alphaWithOpenEyes) * rest[k] : 1.0F;
        values[k] = oscillation.size * strength * std::clamp(swelling, 0.3F, 1.8F) * rhythm;
    }
}

} // namespace kvsig::tool
