#pragma once

#include "kvsig/kernel/RawRun.h"

#include <cstdint>
#include <vector>

namespace kvsig {

/// Knows with which scales counts may be multiplied in single precision. Of a scale that many
/// counts are converted with, every count of their width is tried once; where each gives, bit for
/// bit, what the product in double precision gives when it is rounded to float, the rest is
/// converted by FloatScale, in less than half the time. With nearly all scales it is so.
class FloatScales {
  public:
    /// The scale in floats when it is known to change no result, else null. `count` counts are
    /// about to be converted. Valid until the next call.
    const FloatScale* find(double scale, RawCode code, std::int64_t count);

  private:
    enum class Finding { none, equal, different };
    struct Entry {
        double scale = 0.0;
        RawCode code = RawCode::native32;
        Finding finding = Finding::none;
        FloatScale floats;
        std::int64_t counts = 0; ///< converted until now
    };

    Entry& entryOf(double scale, RawCode code);

    std::vector<Entry> m_entries; ///< a place for each remainder of the scales' hash
};

/// `scale` in two floats, when its product with each count of that width is, bit for bit, the
/// double product rounded to float; else false. Tries 2^14 counts of 16 bits, 2^22 of 24.
[[nodiscard]] bool splitScale(double scale, RawCode code, FloatScale& floats);

} // namespace kvsig
