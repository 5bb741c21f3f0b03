#include "tool/synth/Generators.h"

#include "kvsig/util/Saturate.h"
#include "tool/synth/StableMath.h"

#include <cmath>
#include <cstddef>

namespace kvsig::tool {

LowPassNoise::LowPassNoise(double cutoff, double rate)
    : m_keep(stableExp(-2 * pi * cutoff / rate)), m_gain(std::sqrt(1 - m_keep * m_keep)) {}

Follower::Follower(double seconds, double rate) : m_share(1 - stableExp(-1 / (seconds * rate))) {}

Rhythm::Rhythm(double frequency, double bandwidth, double rate) {
    const double radius = stableExp(-pi * bandwidth / rate);
    m_a1 = 2 * radius * stableCos(2 * pi * frequency / rate);
    m_a2 = -radius * radius;
    // The variance of an AR(2) process, solved for the gain of its input.
    m_gain = std::sqrt((1 + m_a2) * ((1 - m_a2) * (1 - m_a2) - m_a1 * m_a1) / (1 - m_a2));
}

Rotor::Rotor(double frequency, double rate)
    : m_stepCos(stableCos(2 * pi * frequency / rate)),
      m_stepSin(stableSin(2 * pi * frequency / rate)) {}

void Rotor::turn() {
    const double c = m_cos * m_stepCos - m_sin * m_stepSin;
    const double s = m_sin * m_stepCos + m_cos * m_stepSin;
    // One Newton step toward length 1, or rounding would let the amplitude drift over a day.
    const double length = 1.5 - 0.5 * (c * c + s * s);
    m_cos = c * length;
    m_sin = s * length;
}

Waveform::Waveform(double seconds, double (*shape)(double)) {
    const auto steps = saturate<std::size_t>(seconds * 1000);
    m_values.reserve(steps);
    for (std::size_t i = 0; i < steps; ++i)
        m_values.push_back(shape(static_cast<double>(i) / 1000));
}

double Waveform::at(double seconds) const {
    const double place = seconds * 1000;
    if (!(place >= 0) || place + 1 >= static_cast<double>(m_values.size()))
        return 0;
    const auto index = saturate<std::size_t>(place);
    const double share = place - static_cast<double>(index);
    return m_values[index] + share * (m_values[index + 1] - m_values[index]);
}

} // namespace kvsig::tool
