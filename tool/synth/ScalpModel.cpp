#include "tool/synth/ScalpModel.h"

#include "tool/synth/StableMath.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kvsig::tool {
namespace {

struct MusclePlace {
    float x, y;
    double strength;
};

constexpr auto musclePlaces = std::to_array<MusclePlace>({
    {-0.88F, 0.05F, 1.0}, // temporal
    {0.88F, 0.05F, 0.9},
    {-0.35F, 0.95F, 0.5}, // frontal
    {0.35F, 0.95F, 0.5},
});

// The places of the artefacts behind the cortex's sources.
enum Artefact : std::size_t { lids, gaze, heart, humInPhase, humAside, firstMuscle };
constexpr std::size_t artefactCount = firstMuscle + musclePlaces.size();

float decay(float x, float y, const Electrode& electrode, float reach) {
    const float distance = distanceBetween(x, y, electrode.x, electrode.y);
    return static_cast<float>(stableExp(static_cast<double>(-distance / reach)));
}

// 1 at Fp1 and Fp2, a third at the next row, hardly anything behind the vertex.
float lidsWeight(const Electrode& electrode) {
    const float eye = electrode.x < 0 ? -0.28F : 0.28F;
    constexpr float reach = 0.28F;
    const Electrode fp{"", eye < 0 ? -0.25F : 0.25F, 0.76F, false};
    return decay(eye, 0.95F, electrode, reach) / decay(eye, 0.95F, fp, reach);
}

// The front of the eyeball is positive: the side looked at rises, the other falls.
float gazeWeight(const Electrode& electrode) {
    return decay(0.72F, 0.58F, electrode, 0.3F) - decay(-0.72F, 0.58F, electrode, 0.3F);
}

// Electrodes differ in how well they stick: peak to peak from 8 to 15 uV, and a little in phase,
// so that the hum does not cancel out between two of them.
void addHum(std::vector<float>& artefacts, Random random) {
    const double amplitude = random.uniform(4.0, 7.5);
    const double phase = random.uniform(-0.35, 0.35);
    artefacts[humInPhase] = static_cast<float>(amplitude * stableCos(phase));
    artefacts[humAside] = static_cast<float>(amplitude * stableSin(phase));
}

} // namespace

ScalpModel::ScalpModel(const std::vector<Electrode>& electrodes, double rate, double mains,
                       std::uint64_t seed)
    : m_cortex(seed, rate),
      m_behaviour(seed, rate),
      m_heart(seed, rate),
      m_mains(mains, rate),
      m_hums(mains > 0 && mains < rate / 2) {
    std::uint64_t stream = 400;
    for (const MusclePlace& place : musclePlaces)
        m_muscles.emplace_back(seed, stream++, place.strength, rate);
    m_sources.resize(m_cortex.sourceCount() + artefactCount);
    for (const Electrode& electrode : electrodes)
        addChannel(electrode, rate, seed);
}

void ScalpModel::addChannel(const Electrode& electrode, double rate, std::uint64_t seed) {
    const std::uint64_t stream = 1000 + m_channels.size();
    std::vector<float> artefacts(artefactCount);
    Channel channel{{}, Random(seed, stream), LowPassNoise(6, rate), LowPassNoise(0.01, rate)};
    const auto pick = [&channel](std::size_t source, float weight) {
        if (std::fabs(weight) > 0.002F)
            channel.taps.push_back({source, weight});
    };
    if (electrode.onChest) {
        artefacts[heart] = 1;
    } else {
        for (std::size_t i = 0; i < m_cortex.sourceCount(); ++i)
            pick(i, m_cortex.weight(i, electrode));
        artefacts[lids] = lidsWeight(electrode);
        artefacts[gaze] = gazeWeight(electrode);
        artefacts[heart] = -0.003F * electrode.x;
        for (std::size_t i = 0; i < musclePlaces.size(); ++i)
            artefacts[firstMuscle + i] =
                decay(musclePlaces[i].x, musclePlaces[i].y, electrode, 0.22F);
    }
    if (m_hums)
        addHum(artefacts, Random(seed, stream + 0x10000));
    for (std::size_t i = 0; i < artefactCount; ++i)
        pick(m_cortex.sourceCount() + i, artefacts[i]);
    m_channels.push_back(std::move(channel));
}

void ScalpModel::advance(std::size_t count) {
    m_count = std::min(count, blockSize);
    fillArtefacts(m_count);
    m_cortex.advance({m_rest.data(), m_count}, m_sources);
    m_position += static_cast<std::int64_t>(m_count);
}

void ScalpModel::fillArtefacts(std::size_t count) {
    m_eyeEvents.clear();
    Block* const artefacts = &m_sources[m_cortex.sourceCount()];
    for (std::size_t k = 0; k < count; ++k) {
        m_behaviour.next();
        if (m_behaviour.changed())
            m_eyeEvents.push_back(
                {m_position + static_cast<std::int64_t>(k), m_behaviour.eyesClosed()});
        m_rest[k] = static_cast<float>(m_behaviour.rest());
        artefacts[lids][k] = m_behaviour.lids();
        artefacts[gaze][k] = m_behaviour.gaze();
        artefacts[heart][k] = m_heart.next();
        artefacts[humInPhase][k] = static_cast<float>(m_mains.cosine());
        artefacts[humAside][k] = static_cast<float>(m_mains.sine());
        m_mains.turn();
        for (std::size_t i = 0; i < m_muscles.size(); ++i)
            artefacts[firstMuscle + i][k] = m_muscles[i].next();
    }
}

void ScalpModel::read(std::size_t index, Block& values) {
    Channel& channel = m_channels[index];
    for (std::size_t k = 0; k < m_count; ++k) {
        const float white = channel.random.gaussian();
        values[k] =
            0.5F * white + 1.2F * channel.contact.next(white) + 8.0F * channel.drift.next(white);
    }
    for (const Tap& tap : channel.taps) {
        const Block& source = m_sources[tap.source];
        for (std::size_t k = 0; k < blockSize; ++k)
            values[k] += tap.weight * source[k];
    }
}

} // namespace kvsig::tool
