#include "kvsig/filters/FIRFilter.h"

#include "kvsig/filters/KaiserLowPass.h"
#include "kvsig/filters/SlidingSums.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>

namespace kvsig {
namespace {

constexpr int shortestBlock = 1 << 12; // outputs

} // namespace

int FIRFilter::isDesigned() const { return m_nTaps > 0 ? 1 : 0; }

int FIRFilter::design(double cutoff, double transition, double attenuation) {
    setParameters(cutoff, transition, attenuation);
    reset();

    // Kaiser's estimate of the length that reaches the attenuation within the transition width.
    const double length = (attenuation - 8.0) / (transition * 14.357);
    if (!(length > -1.0 && length < mostFilterTaps))
        return 0;
    int taps = saturate<int>(length);
    if (taps % 2 == 0)
        ++taps;

    try {
        m_weights = type() == lowPass ? kaiserLowPass(taps, cutoff, attenuation)
                                      : std::vector<float>(static_cast<std::size_t>(taps) / 2 + 1);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    if (m_weights.empty())
        return 0;
    m_nTaps = taps;
    return type() == lowPass ? 1 : 0;
}

int FIRFilter::apply(float* data, int count) {
    if (!data || m_nTaps == 0 || count < m_nTaps)
        return 0;
    // Outputs go where inputs of later ones lie, so these are copied away before, block by block.
    const int outputs = count - m_nTaps + 1;
    const int block = std::min(outputs, std::max(shortestBlock, m_nTaps));
    const int overlap = m_nTaps - 1;
    const std::unique_ptr<float[]> inputs(new (
        std::nothrow) float[static_cast<std::size_t>(block) + static_cast<std::size_t>(overlap)]);
    if (!inputs)
        return 0;
    const int margin = m_nTaps / 2;
    std::copy_n(data, overlap, inputs.get());
    std::fill_n(data, margin, 0.0F);
    for (int k = 0; k < outputs;) {
        const int length = std::min(block, outputs - k);
        std::copy_n(data + k + overlap, length, inputs.get() + overlap);
        slidingSums(inputs.get(), 1, m_weights.data(), m_nTaps, Fold::sum, data + k + margin,
                    length);
        std::copy_n(inputs.get() + length, overlap, inputs.get());
        k += length;
    }
    std::fill_n(data + margin + outputs, margin, 0.0F);
    return 1;
}

void FIRFilter::reset() {
    m_nTaps = 0;
    m_weights = std::vector<float>();
}

long FIRFilter::iterGetPosition() const { return -1; }

void FIRFilter::iterSetPosition(long /*position*/, float* /*data*/, int /*count*/) {}

int FIRFilter::iterApply(float* /*data*/, int /*count*/) { return 0; }

int FIRFilter::nPrePts() const { return m_nTaps / 2 + 2; }

int FIRFilter::nPstPts() const { return m_nTaps / 2 + 2; }

int FIRFilter::nNumerWeights() const { return m_nTaps; }

double FIRFilter::getNumerWeight(int index) const {
    if (index < 0 || index >= m_nTaps)
        return 0.0;
    return static_cast<double>(
        m_weights[static_cast<std::size_t>(std::min(index, m_nTaps - 1 - index))]);
}

int FIRFilter::nDenomWeights() const { return 0; }

double FIRFilter::getDenomWeight(int /*index*/) const { return 0.0; }

} // namespace kvsig
