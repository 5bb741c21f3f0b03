#include "tool/HeldSamples.h"

#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kvsig::tool {

long HeldSamples::at(long shown) const {
    if (!isSlower())
        return shown;
    // What the rates and the two operations lose by rounding: 100 Hz / 3 is no double, and sample
    // 3 of 100 Hz is its sample 1.
    constexpr double rounding = 2 * std::numeric_limits<double>::epsilon();
    const double own = static_cast<double>(shown) * m_ownRate / m_commonRate;
    return saturate<long>(std::floor(own + std::abs(own) * rounding));
}

long HeldSamples::firstShown(long own) const {
    if (!isSlower())
        return own;
    constexpr double most = 9007199254740992.0; // the integers that a double tells apart
    const double rounded = std::floor(static_cast<double>(own) * m_commonRate / m_ownRate);
    const auto shown = saturate<long>(std::clamp(rounded, -most, most));
    // Rounding may have gone either way.
    if (at(shown) < own)
        return shown + 1;
    return at(shown - 1) < own ? shown : shown - 1;
}

} // namespace kvsig::tool
