#include "tool/synth/Behaviour.h"

#include "tool/synth/StableMath.h"

#include <algorithm>

namespace kvsig::tool {
namespace {

// Half a cosine from one level to another.
double ramp(double share, double from, double to) {
    return from + (to - from) * 0.5 * (1 - stableCos(pi * share));
}

// Closing is faster than opening; the amplifier's high-pass lets it swing below the baseline.
double lidMovement(double t) {
    if (t < 0.10)
        return ramp(t / 0.10, 0, 1);
    if (t < 0.32)
        return ramp((t - 0.10) / 0.22, 1, -0.07);
    return ramp(std::min(1.0, (t - 0.32) / 0.45), -0.07, 0);
}

} // namespace

Behaviour::Behaviour(std::uint64_t seed, double rate)
    : m_random(seed, 200),
      m_rate(rate),
      m_lidShape(0.78, lidMovement),
      m_eyeball(0.02, rate),
      m_amplifier(0.7, rate),
      m_calming(0.45, rate),
      m_arousal(0.15, rate) {}

void Behaviour::next() {
    m_changed = --m_untilChange < 0;
    if (m_changed)
        changeEyes();
    if (!m_closed)
        moveWhileOpen();

    m_lidSeconds += 1 / m_rate;
    m_lids = static_cast<float>(m_lidSize * m_lidShape.at(m_lidSeconds / m_lidStretch));
    const double eyeball = m_eyeball.next(m_gazeTarget);
    m_gaze = static_cast<float>(eyeball - m_amplifier.next(eyeball));

    const double calm = m_calming.next(m_closed ? 1 : 0);
    const double aroused = m_arousal.next(m_closed ? 0 : 1);
    m_rest = std::min(calm, 1 - aroused);
}

void Behaviour::changeEyes() {
    m_closed = !m_closed;
    m_untilChange = m_rate * m_random.uniform(shortestPhaseSeconds, 12);
    if (m_closed) {
        // The eyeballs roll up behind the closing lids.
        startLidMovement(m_random.uniform(90, 130), 1.7);
        m_gazeTarget = 0;
    } else {
        startLidMovement(m_random.uniform(-90, -60), 1.4);
        m_untilBlink = m_rate * m_random.uniform(1.2, 2.2);
        m_untilGlance = m_rate * m_random.uniform(0.8, 2);
    }
}

void Behaviour::startLidMovement(double microvolts, double stretch) {
    m_lidSeconds = 0;
    m_lidSize = microvolts;
    m_lidStretch = stretch;
}

void Behaviour::moveWhileOpen() {
    // No blink runs into the closing of the eyes.
    if (--m_untilBlink < 0 && m_untilChange > m_rate) {
        const double microvolts = m_random.uniform(95, 150);
        startLidMovement(microvolts, m_random.uniform(0.85, 1.15));
        m_untilBlink = m_rate * m_random.uniform(1.2, 3.6);
    }
    if (--m_untilGlance < 0) {
        m_gazeTarget = m_random.uniform(-45, 45);
        m_untilGlance = m_rate * m_random.uniform(0.7, 3);
    }
}

} // namespace kvsig::tool
