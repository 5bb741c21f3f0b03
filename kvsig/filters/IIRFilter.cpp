#include "kvsig/filters/IIRFilter.h"

#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace kvsig {
namespace {

// 0.5 less one step of single precision: from here on the tangent is of no use.
constexpr double nyquistLimit = 0.49999988079071045;

} // namespace

int IIRFilter::isDesigned() const { return m_designed; }

int IIRFilter::design(double cutoff, double transition, double attenuation) {
    setParameters(cutoff, transition, attenuation);
    if (cutoff >= nyquistLimit || (type() == notch && transition >= nyquistLimit)) {
        m_b0 = 1.0;
        m_b1 = m_b2 = m_a1 = m_a2 = 0.0;
        m_designed = 1;
        return 1;
    }

    const double t = std::tan(std::numbers::pi * cutoff);
    switch (type()) {
    case lowPass:
        m_b0 = m_b1 = t / (1.0 + t);
        m_a1 = (1.0 - t) / (1.0 + t);
        break;
    case highPass:
        m_b0 = 1.0 / (1.0 + t);
        m_b1 = -1.0 / (1.0 + t);
        m_a1 = (1.0 - t) / (1.0 + t);
        break;
    case notch: {
        // (s^2 + t^2) / ((s + u)^2 + t^2) with s = (z - 1) / (z + 1)
        const double u = std::tan(std::numbers::pi * transition);
        const double d = (u + 1.0) * (u + 1.0) + t * t;
        m_b0 = m_b2 = (t * t + 1.0) / d;
        m_b1 = -2.0 * (1.0 - t * t) / d;
        m_a1 = 2.0 * (1.0 - u * u - t * t) / d;
        m_a2 = -((1.0 - u) * (1.0 - u) + t * t) / d;
        break;
    }
    default:
        return 0;
    }
    m_designed = 1;
    return 1;
}

int IIRFilter::apply(float* data, int count) { return _apply(data, count, false); }

void IIRFilter::reset() { m_designed = 0; }

long IIRFilter::iterGetPosition() const { return m_position; }

void IIRFilter::iterSetPosition(long position, float* data, int count) {
    m_position = position;
    _apply(data, count, false);
}

int IIRFilter::iterApply(float* data, int count) {
    const long step = std::max(count, 0);
    m_position = m_position > std::numeric_limits<long>::max() - step
                     ? std::numeric_limits<long>::max()
                     : m_position + step;
    return _apply(data, count, true);
}

int IIRFilter::nPrePts() const {
    if (!(freqCutoff() > 0.0))
        return 0;
    return std::min(saturate<int>(1.0 / freqCutoff()), maxPrePts);
}

int IIRFilter::nPstPts() const { return 0; }

int IIRFilter::nNumerWeights() const { return order() == 0 ? 0 : order() + 1; }

double IIRFilter::getNumerWeight(int index) const {
    switch (index) {
    case 0:
        return m_b0;
    case 1:
        return m_b1;
    case 2:
        return m_b2;
    default:
        return 0.0;
    }
}

int IIRFilter::nDenomWeights() const { return nNumerWeights(); }

double IIRFilter::getDenomWeight(int index) const {
    switch (index) {
    case 1:
        return m_a1;
    case 2:
        return m_a2;
    default:
        return 0.0;
    }
}

int IIRFilter::order() const {
    switch (type()) {
    case lowPass:
    case highPass:
        return 1;
    case notch:
        return 2;
    default:
        return 0;
    }
}

int IIRFilter::_apply(float* data, int count, bool continuing) {
    if (!continuing)
        m_toPrime = order();
    if (!data || order() == 0)
        return 0;
    for (; m_toPrime > 0 && count > 0; --m_toPrime, --count, ++data) {
        m_x2 = m_x1;
        m_y2 = m_y1;
        m_x1 = m_y1 = *data;
    }
    if (order() == 1)
        runFirstOrder(data, count);
    else
        runSecondOrder(data, count);
    return 1;
}

// The order of the single-precision operations below is part of the result.

void IIRFilter::runFirstOrder(float* data, int count) {
    const auto b0 = static_cast<float>(m_b0);
    const auto b1 = static_cast<float>(m_b1);
    const auto a1 = static_cast<float>(m_a1);
    float x1 = m_x1;
    float y1 = m_y1;
    for (int i = 0; i < count; ++i) {
        const float x = data[i];
        y1 = b0 * x + b1 * x1 + a1 * y1;
        x1 = x;
        data[i] = y1;
    }
    m_x1 = x1;
    m_y1 = y1;
}

void IIRFilter::runSecondOrder(float* data, int count) {
    const auto b0 = static_cast<float>(m_b0);
    const auto b1 = static_cast<float>(m_b1);
    const auto b2 = static_cast<float>(m_b2);
    const auto a1 = static_cast<float>(m_a1);
    const auto a2 = static_cast<float>(m_a2);
    float x1 = m_x1;
    float x2 = m_x2;
    float y1 = m_y1;
    float y2 = m_y2;
    for (int i = 0; i < count; ++i) {
        const float x = data[i];
        const float y = b0 * x + b1 * x1 + b2 * x2 + a1 * y1 + a2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        data[i] = y;
    }
    m_x1 = x1;
    m_x2 = x2;
    m_y1 = y1;
    m_y2 = y2;
}

} // namespace kvsig
