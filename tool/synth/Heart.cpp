#include "tool/synth/Heart.h"

#include "tool/synth/StableMath.h"

#include <algorithm>
#include <cmath>

namespace kvsig::tool {
namespace {

double wave(double t, double centre, double width, double microvolts) {
    const double z = (t - centre) / width;
    return microvolts * stableExp(-0.5 * z * z);
}

double beatShape(double t) {
    const double p = wave(t, 0.12, 0.022, 110);
    const double qrs =
        wave(t, 0.243, 0.009, -120) + wave(t, 0.265, 0.011, 1150) + wave(t, 0.290, 0.011, -260);
    return p + qrs + wave(t, 0.49, 0.045, 270);
}

constexpr double beatSeconds = 0.68;
constexpr double breathsPerSecond = 0.24;

} // namespace

Heart::Heart(std::uint64_t seed, double rate)
    : m_beat(beatSeconds, beatShape),
      m_random(seed, 100),
      m_step(1 / rate),
      m_interval(nextInterval()) {}

float Heart::next() {
    const auto value = static_cast<float>(m_beat.at(m_sinceBeat));
    m_sinceBeat += m_step;
    // At a sampling rate below the heart's a sample steps over several beats.
    if (m_sinceBeat >= m_interval) {
        m_sinceBeat = std::fmod(m_sinceBeat, m_interval);
        m_interval = nextInterval();
    }
    return value;
}

double Heart::nextInterval() {
    constexpr double mean = 0.855;
    m_breath = std::fmod(m_breath + mean * breathsPerSecond, 1.0);
    const double variation =
        0.045 * stableSin(2 * pi * m_breath) + 0.02 * static_cast<double>(m_random.gaussian());
    return std::max(beatSeconds + 0.01, mean * (1 + variation));
}

} // namespace kvsig::tool
