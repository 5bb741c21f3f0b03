#include "tool/synth/Muscle.h"

namespace kvsig::tool {

Muscle::Muscle(std::uint64_t seed, std::uint64_t stream, double strength, double rate)
    : m_random(seed, stream),
      m_upperEdge(100, rate),
      m_lowerEdge(25, rate),
      m_level(0.12, rate),
      m_strength(strength),
      m_rate(rate) {}

float Muscle::next() {
    if (--m_remaining < 0) {
        m_bursting = !m_bursting;
        m_target = m_strength * (m_bursting ? m_random.uniform(7, 17) : m_random.uniform(0.4, 1.0));
        m_remaining = m_rate * (m_bursting ? m_random.uniform(0.3, 2.2) : m_random.uniform(3, 14));
    }
    const float wide = m_upperEdge.next(m_random.gaussian());
    const float fast = wide - 0.6F * m_lowerEdge.next(wide);
    return static_cast<float>(m_level.next(m_target)) * fast;
}

} // namespace kvsig::tool
