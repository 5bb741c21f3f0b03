#pragma once

#include "tool/synth/Generators.h"
#include "tool/synth/Random.h"

#include <cstdint>

namespace kvsig::tool {

/// What the subject does: looks about and blinks for some ten seconds, then closes the eyes for
/// as long, and so on.
class Behaviour {
  public:
    Behaviour(std::uint64_t seed, double rate);

    /// The shortest time between two changes of the eyes.
    static constexpr double shortestPhaseSeconds = 8;

    /// Goes on by one sample; the values below are that sample's.
    void next();

    [[nodiscard]] bool eyesClosed() const { return m_closed; }
    /// Whether the eyes opened or closed with this sample.
    [[nodiscard]] bool changed() const { return m_changed; }
    /// How far rest has set in, 0 to 1: follows the eyes with a delay.
    [[nodiscard]] double rest() const { return m_rest; }
    /// The lids' potential in uV at Fp1 and Fp2: positive, hence downward on an EEG page.
    [[nodiscard]] float lids() const { return m_lids; }
    /// The eyes' horizontal potential in uV at F8 when they look to the right.
    [[nodiscard]] float gaze() const { return m_gaze; }

  private:
    void changeEyes();
    void startLidMovement(double microvolts, double stretch);
    void moveWhileOpen();

    Random m_random;
    double m_rate;
    bool m_closed = true;
    bool m_changed = false;
    double m_untilChange = 0; ///< all in samples
    double m_untilBlink = 0;
    double m_untilGlance = 0;

    Waveform m_lidShape;
    double m_lidSeconds = 1e9; ///< since the lid movement began
    double m_lidStretch = 1;
    double m_lidSize = 0;
    float m_lids = 0;

    double m_gazeTarget = 0;
    Follower m_eyeball;
    Follower m_amplifier; ///< what the amplifier's high-pass takes away again
    float m_gaze = 0;

    Follower m_calming;
    Follower m_arousal;
    double m_rest = 0;
};

} // namespace kvsig::tool
