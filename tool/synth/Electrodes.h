#pragma once

#include <cstddef>
#include <string>

namespace kvsig::tool {

/// A recording place on the head seen from above, in units of the distance from Cz that 90 degrees
/// on the scalp cover: x to the subject's right, y to the front.
struct Electrode {
    std::string name;
    float x = 0;
    float y = 0;
    bool onChest = false; ///< records the heart, not the brain
};

/// The order in which channels are added: the 19 electrodes of the 10-20 system, A1, A2, ECG, the
/// further ones of the 10-10 system, then E73, E74 ... spread over the scalp.
[[nodiscard]] Electrode electrodeAt(std::size_t index);

[[nodiscard]] float distanceBetween(float x1, float y1, float x2, float y2);

} // namespace kvsig::tool
