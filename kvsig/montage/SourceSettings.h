#pragma once

#include "kvsig/filters/FilterAttr.h"
#include "kvsig/util/Export.h"

#include <cstdint>
#include <string>

namespace kvsig {

/// Display and filter settings of a source.
struct SourceSettings {
    std::int32_t displayValue = 0; ///< sensitivity, microvolts per millimetre; 0: none
    bool flag = false;             ///< the host's own
    bool followMontage = true;     ///< the montage-wide filters apply, not the source's own
    std::int32_t intValue = 0;     ///< the host's own
    FilterAttr lowPass;            ///< the source's own high filter, hertz
    FilterAttr highPass;           ///< the source's own low filter, hertz

    /// All of them are equal.
    friend bool operator==(const SourceSettings&, const SourceSettings&) = default;
};

/// Scale of a polygraphic channel as the host draws it.
struct PolyScale {
    bool showScaling = false;      ///< the scale is drawn
    bool transparentScale = false; ///< a way of drawing it
    double minimum = 0.0;          ///< value at its lower end, in the channel's units
    double maximum = 0.0;          ///< value at its upper end
};

/// True when a definition must carry the settings: they are not the defaults.
[[nodiscard]] KVSIG_API bool settingsDiffer(const SourceSettings& settings, const PolyScale& scale);

/// The settings as ten comma-separated fields: display value, flag, follow montage, integer value,
/// time constant of the high-pass, cutoff of the low-pass, show scaling, transparent scale,
/// minimum, maximum; a limit that is no finite number is written as 0. The filter texts lose
/// digits: "%.2g sec" and "%.3g Hz" (100 s is "1e+02 sec": a "+" here makes no average).
[[nodiscard]] KVSIG_API std::string formatSettings(const SourceSettings& settings,
                                                   const PolyScale& scale);

/// Reads ten fields, or the first six (an older form), where the other four do not follow as they
/// should. Whole numbers saturate. False when the text has neither form; nothing is changed then.
KVSIG_API bool scanSettings(const char* text, SourceSettings& settings, PolyScale& scale);

} // namespace kvsig
