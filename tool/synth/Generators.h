#pragma once

#include "tool/synth/Random.h"

#include <vector>

/// The recursive parts that the signals are built of. Rates and frequencies in hertz; every part
/// is stable at any rate, also where its frequency is beyond half of it.
namespace kvsig::tool {

/// First-order low-pass of variance 1 for input noise of variance 1.
class LowPassNoise {
  public:
    LowPassNoise(double cutoff, double rate);
    float next(float white) {
        m_value = m_keep * m_value + m_gain * static_cast<double>(white);
        return static_cast<float>(m_value);
    }

  private:
    double m_keep;
    double m_gain;
    double m_value = 0;
};

/// A level that follows its target with a time constant in seconds.
class Follower {
  public:
    Follower(double seconds, double rate);
    double next(double target) { return m_value += m_share * (target - m_value); }

  private:
    double m_share;
    double m_value = 0;
};

/// Noise around a frequency, of variance 1 for input noise of variance 1: an AR(2) process. The
/// narrower the band, the more it looks like a rhythm that waxes and wanes.
class Rhythm {
  public:
    Rhythm(double frequency, double bandwidth, double rate);
    float next(float white) {
        const double value =
            m_a1 * m_last + m_a2 * m_beforeLast + m_gain * static_cast<double>(white);
        m_beforeLast = m_last;
        m_last = value;
        return static_cast<float>(value);
    }

  private:
    double m_a1;
    double m_a2;
    double m_gain;
    double m_last = 0;
    double m_beforeLast = 0;
};

/// Cosine and sine of a fixed frequency by rotation of a pointer.
class Rotor {
  public:
    Rotor(double frequency, double rate);
    void turn();
    [[nodiscard]] double cosine() const { return m_cos; }
    [[nodiscard]] double sine() const { return m_sin; }

  private:
    double m_stepCos;
    double m_stepSin;
    double m_cos = 1;
    double m_sin = 0;
};

/// A curve of fixed shape, stored at millisecond steps.
class Waveform {
  public:
    Waveform(double seconds, double (*shape)(double seconds));
    /// Between the steps linear; 0 before the start and after the end.
    [[nodiscard]] double at(double seconds) const;
    [[nodiscard]] double duration() const { return static_cast<double>(m_values.size()) / 1000; }

  private:
    std::vector<double> m_values;
};

} // namespace kvsig::tool
