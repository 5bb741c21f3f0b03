#pragma once

#include "kvsig/util/Export.h"

#include <cstdint>

namespace kvsig {

/// A digital filter that works in place on one channel's samples, on whole blocks (apply()) or on a
/// stream of adjacent blocks (iterSetPosition(), then iterApply() for each block).
///
/// All frequencies are normalised to the sampling rate: cycles per sample, 0.5 is the Nyquist
/// frequency. Counts are samples. Failures are results; nothing throws, but a copy may run out of
/// memory. A filter holds stream state: it belongs to one channel and is used from one thread at a
/// time.
class KVSIG_API Filter {
  public:
    /// What the filter does; a list holds several.
    enum FilterType : std::int32_t { lowPass = 0, highPass = 1, notch = 2, list = 3 };

    virtual ~Filter();

    /// 1 when the filter can be used, else 0.
    virtual int isDesigned() const = 0;
    /// Computes the filter; 1 on success, 0 on failure. `cutoff` and `transition` are normalised
    /// frequencies, `attenuation` is the stop-band attenuation in dB. The arguments are kept even
    /// when the design fails.
    virtual int design(double cutoff, double transition, double attenuation) = 0;
    /// Filters `count` samples as a block of their own; 1 when done, 0 when not.
    virtual int apply(float* data, int count) = 0;
    /// Back to undesigned.
    virtual void reset() = 0;

    /// Index of the sample that the next iterApply() begins with, or -1 for a filter that does not
    /// stream.
    virtual long iterGetPosition() const = 0;
    /// Starts a stream at sample index `position`: the `count` samples before it are filtered in
    /// place as a fresh block, which warms the filter up.
    virtual void iterSetPosition(long position, float* data, int count) = 0;
    /// Filters the next block of the stream; it may lie anywhere in memory. 1 when done, 0 when
    /// not.
    virtual int iterApply(float* data, int count) = 0;

    /// Samples that the filter wants before a block, to be thrown away after filtering.
    virtual int nPrePts() const = 0;
    /// Samples that the filter wants after a block, to be thrown away after filtering.
    virtual int nPstPts() const = 0;

    /// @{
    /// The weights of the transfer function; an index out of range gives 0.
    virtual int nNumerWeights() const = 0;
    virtual double getNumerWeight(int index) const = 0;
    virtual int nDenomWeights() const = 0;
    virtual double getDenomWeight(int index) const = 0;
    /// @}

    /// The kind of filter.
    FilterType type() const { return m_type; }
    /// As design() was given it.
    double freqCutoff() const { return m_cutoff; }
    /// Transition width; for a notch its second frequency.
    double freqTransition() const { return m_transition; }
    /// Stop-band attenuation in dB.
    double attenuation() const { return m_attenuation; }

    /// Equal settings: type, cutoff, transition and attenuation. Stream state, weights and the
    /// filters of a list are not looked at.
    bool operator==(const Filter& other) const;

  protected:
    /// A filter is made by its kind alone and designed afterwards.
    explicit Filter(FilterType type = lowPass) : m_type(type) {}
    /// @{
    /// Copies have the same settings and stream state.
    Filter(const Filter&) = default;
    Filter& operator=(const Filter&) = default;
    /// @}

    /// Keeps what design() was given.
    void setParameters(double cutoff, double transition, double attenuation);

  private:
    FilterType m_type;
    double m_cutoff = 0.0;
    double m_transition = 0.0;
    double m_attenuation = 0.0;
};

} // namespace kvsig
