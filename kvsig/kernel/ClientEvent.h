#pragma once

#include "kvsig/util/Export.h"

#include <cstdint>

namespace kvsig {

/// An event exchanged with the host. The first five fields are its fixed part, in this order.
struct ClientEvent {
    std::int16_t kind = 0;     ///< 3 sensitivity, 4 low filter, 5 high filter, 6 notch, 7 reset
    std::int16_t hasValue = 0; ///< nonzero: `value` counts; else the setting is off
    double value = 0.0;
    char label[32] = "";      ///< channel or target that the event names; empty for all
    char stateText[128] = ""; ///< what SetDefStateText() writes
};

/// Writes the default state text of a display-setting event (kinds 3 to 7) into its state text:
/// "LowFilter Fp1-F7 1.0", "NotchFilter MC off", "Reset all". Other kinds are left unchanged.
KVSIG_API void SetDefStateText(ClientEvent& event);

} // namespace kvsig
