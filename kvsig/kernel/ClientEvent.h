#pragma once

#include "kvsig/util/Export.h"

#include <cstdint>
#include <type_traits>

namespace kvsig {

/// An event exchanged with the host, 192 bytes. Texts are terminated 8-bit bytes; what is longer is
/// cut.
struct ClientEvent {
    /// 0 annotation, 3 sensitivity, 4 low filter, 5 high filter, 6 notch, 7 reset. At byte 0.
    std::int16_t kind = 0;
    std::int16_t hasValue = 0; ///< nonzero: `value` counts; else the setting is off. At byte 2.
    double value = 0.0;        ///< at byte 8
    char label[32] = "";       ///< channel or target that it names; empty for all. At byte 16.
    char stateText[128] = "";  ///< the annotation, or what SetDefStateText() writes. At byte 48.
    /// The sample at which it begins, from 0 at the recording's rate; the sample count for one at
    /// the very end. At byte 176.
    std::int64_t sample = 0;
    double duration = 0.0; ///< seconds; 0 for a moment. At byte 184.
};
static_assert(sizeof(ClientEvent) == 192 && std::is_trivially_copyable_v<ClientEvent>);

/// Writes the default state text of a display-setting event (kinds 3 to 7) into its state text:
/// "LowFilter Fp1-F7 1.0", "NotchFilter MC off", "Reset all". Other kinds are left unchanged.
KVSIG_API void SetDefStateText(ClientEvent& event);

} // namespace kvsig
