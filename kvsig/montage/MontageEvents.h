#pragma once

namespace kvsig {

struct ClientEvent;
class SourceMontage;

/// Changes the settings that a display event (kinds 3 to 7) speaks of, as SourceMontage::
/// updateState() says, and leaves the chains alone. True when a setting changed.
[[nodiscard]] bool applyDisplayEvent(SourceMontage& montage, const ClientEvent& event);

} // namespace kvsig
