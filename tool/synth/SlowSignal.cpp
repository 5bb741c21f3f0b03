#include "tool/synth/SlowSignal.h"

#include "tool/synth/StableMath.h"

#include <cmath>

namespace kvsig::tool {
namespace {

double wanderCutoff(SlowKind kind) {
    switch (kind) {
    case SlowKind::temperature:
        return 0.0005;
    case SlowKind::oxygen:
        return 0.01;
    default:
        return 0.05;
    }
}

} // namespace

SlowSignal::SlowSignal(SlowKind kind, double rate, std::uint64_t seed, std::uint64_t stream)
    : m_kind(kind),
      m_rate(rate),
      m_random(seed, stream),
      m_wander(wanderCutoff(kind), rate),
      m_breath(m_random.uniform(0, 0.1)) {}

float SlowSignal::next() {
    const float wander = m_wander.next(m_random.gaussian());
    switch (m_kind) {
    case SlowKind::oxygen:
        return 96.8F + 0.7F * wander;
    case SlowKind::temperature:
        return 36.6F + 0.15F * wander;
    case SlowKind::pulse:
        return 70.0F + 3.0F * wander;
    case SlowKind::breathing:
        break;
    }
    return nextBreathing() + 0.03F * wander;
}

float SlowSignal::nextBreathing() {
    m_breath += 1 / (m_rate * m_breathSeconds);
    if (m_breath >= 1) {
        m_breath = std::fmod(m_breath, 1.0);
        m_breathSeconds = m_random.uniform(3.6, 4.8);
        m_depth = m_random.uniform(0.8, 1.15);
    }
    const double phase = 2 * pi * m_breath;
    return static_cast<float>(m_depth * (stableSin(phase) + 0.15 * stableSin(2 * phase)));
}

} // namespace kvsig::tool
