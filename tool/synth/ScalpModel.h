#pragma once

#include "tool/synth/Behaviour.h"
#include "tool/synth/Block.h"
#include "tool/synth/Cortex.h"
#include "tool/synth/Electrodes.h"
#include "tool/synth/Generators.h"
#include "tool/synth/Heart.h"
#include "tool/synth/Muscle.h"
#include "tool/synth/Random.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kvsig::tool {

/// The potentials of a head against a quiet reference. A few dozen sources, those of the brain and
/// those that disturb the recording, are picked up by every electrode according to its place, so
/// that neighbours resemble each other as they do on a real head.
///
/// Runs for ever in constant memory: advance(), read() every channel, and again.
class ScalpModel {
  public:
    /// `mains` in hertz; 0, or what the sampling rate cannot show, leaves the hum out.
    ScalpModel(const std::vector<Electrode>& electrodes, double rate, double mains,
               std::uint64_t seed);

    /// Goes on by `count` samples, at most blockSize.
    void advance(std::size_t count);

    /// The channel's potential in uV over the last advance(); values behind its count are of no
    /// meaning. Once per channel and advance(): each channel has noise of its own.
    void read(std::size_t channel, Block& values);

    /// The eyes closed or opened with this sample since the start.
    struct EyeEvent {
        std::int64_t sample;
        bool closed;
    };
    /// What happened during the last advance().
    [[nodiscard]] const std::vector<EyeEvent>& eyeEvents() const { return m_eyeEvents; }

  private:
    struct Tap {
        std::size_t source;
        float weight;
    };

    struct Channel {
        std::vector<Tap> taps;
        Random random;
        LowPassNoise contact;
        LowPassNoise drift;
    };

    void addChannel(const Electrode& electrode, double rate, std::uint64_t seed);
    void fillArtefacts(std::size_t count);

    Cortex m_cortex;
    Behaviour m_behaviour;
    Heart m_heart;
    std::vector<Muscle> m_muscles;
    Rotor m_mains;
    bool m_hums;

    /// The cortex's sources, then those of the artefacts.
    std::vector<Block> m_sources;
    Block m_rest{};
    std::vector<Channel> m_channels;
    std::vector<EyeEvent> m_eyeEvents;
    std::int64_t m_position = 0;
    std::size_t m_count = 0;
};

} // namespace kvsig::tool
