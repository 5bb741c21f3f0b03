#pragma once

#include "kvsig/filters/Filter.h"

#include <vector>

namespace kvsig {

/// A symmetric FIR filter designed by the Kaiser window: zero phase, so the first and the last
/// nTaps / 2 samples of a filtered block cannot be computed and become 0. Only low passes can be
/// designed.
///
/// It does not stream: iterApply() returns 0 and leaves the samples alone, iterSetPosition() does
/// nothing, iterGetPosition() is -1.
class KVSIG_API FIRFilter : public Filter {
  public:
    /// Undesigned.
    explicit FIRFilter(FilterType type = lowPass) : Filter(type) {}

    /// Whether there are taps. A type that cannot be designed still gets its taps, all 0, from
    /// design(), and counts as designed from then on; this is kept on purpose.
    int isDesigned() const override;
    /// The transition width and the attenuation give the number of taps. A negative one, one of
    /// more than about four millions or NaN fails and leaves the filter undesigned, and so does an
    /// attenuation beyond some 6000 dB or memory that runs out. Types other than lowPass: 0.
    int design(double cutoff, double transition, double attenuation) override;
    /// 0, and the samples are left alone, when the filter is undesigned or longer than the block,
    /// when `data` is null or memory runs out.
    int apply(float* data, int count) override;
    void reset() override;

    long iterGetPosition() const override;
    void iterSetPosition(long position, float* data, int count) override;
    int iterApply(float* data, int count) override;

    int nPrePts() const override;
    int nPstPts() const override;

    /// The number of taps; the weights are the taps in order, mirrored about the centre.
    int nNumerWeights() const override;
    double getNumerWeight(int index) const override;
    int nDenomWeights() const override;
    double getDenomWeight(int index) const override;

  private:
    int m_nTaps = 0;              // odd once designed
    std::vector<float> m_weights; // nTaps / 2 + 1, from the outermost to the centre
};

} // namespace kvsig
