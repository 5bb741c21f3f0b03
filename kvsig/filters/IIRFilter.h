#pragma once

#include "kvsig/filters/Filter.h"

namespace kvsig {

/// A recursive filter made by the bilinear transformation: a first-order low or high pass, or a
/// second-order notch. It computes in single precision and runs forward only.
///
/// The filter remembers its last two inputs and outputs, so a stream that is cut into adjacent
/// blocks of any sizes (0 and 1 among them) gives the same samples, bit by bit, as one pass over
/// the whole. A fresh start lets its first sample (a notch: its first two) through unchanged, as
/// the history to begin with; when its block is too short for that, the stream's next samples take
/// that place. Without any fresh start the history is silence.
///
/// Until it is designed, and with a cutoff at the Nyquist frequency or above, it changes nothing.
class KVSIG_API IIRFilter : public Filter {
  public:
    /// The most that nPrePts() answers.
    static constexpr int maxPrePts = 1 << 22;

    /// Undesigned.
    explicit IIRFilter(FilterType type = lowPass) : Filter(type) {}

    int isDesigned() const override;
    /// A low or high pass is 3 dB down at `cutoff` and takes no account of the other values. A
    /// notch takes `cutoff` out; `transition`, a frequency too, sets how wide: the wider the
    /// higher. A notch of width 0 has poles where its zeros are and cancels itself out: it filters
    /// nothing. That is kept on purpose.
    int design(double cutoff, double transition, double attenuation) override;
    int apply(float* data, int count) override;
    /// Clears the designed flag and nothing else.
    void reset() override;

    long iterGetPosition() const override;
    void iterSetPosition(long position, float* data, int count) override;
    int iterApply(float* data, int count) override;

    /// One period of the cutoff frequency; 0 when the cutoff is not greater than 0.
    int nPrePts() const override;
    int nPstPts() const override;

    /// b0, b1 (and b2): what the inputs are weighted with, the newest first.
    int nNumerWeights() const override;
    double getNumerWeight(int index) const override;
    /// a1 (and a2) from index 1 on: what the outputs are weighted with; index 0 is 0.
    int nDenomWeights() const override;
    double getDenomWeight(int index) const override;

  protected:
    /// Filters in place, as a fresh start or continuing; 1 when done, 0 for null data or a type
    /// that is no IIR filter. A fresh start forgets the history even without data.
    int _apply(float* data, int count, bool continuing);

  private:
    friend class IIRCascade;

    int order() const;
    void runFirstOrder(float* data, int count);
    void runSecondOrder(float* data, int count);

    int m_designed = 0;
    double m_b0 = 1.0, m_b1 = 0.0, m_b2 = 0.0;
    double m_a1 = 0.0, m_a2 = 0.0;
    long m_position = 0;
    float m_x1 = 0.0F, m_x2 = 0.0F; // last and second-last input
    float m_y1 = 0.0F, m_y2 = 0.0F; // last and second-last output
    int m_toPrime = 0;              // samples that still pass unchanged after a fresh start
};

} // namespace kvsig
