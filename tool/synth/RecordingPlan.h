#pragma once

#include "tool/synth/Annotations.h"
#include "tool/synth/EdfHeader.h"
#include "tool/synth/Electrodes.h"
#include "tool/synth/SlowSignal.h"
#include "tool/synth/SynthOptions.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kvsig::tool {

/// What the annotations say.
inline constexpr std::string_view eyesOpenText = "Eyes open";
inline constexpr std::string_view eyesClosedText = "Eyes closed";

/// The signals of a recording in file order, checked and ready to be filled.
struct RecordingPlan {
    /// What fills each signal of the header; the annotation signal of EDF+ stands behind them.
    std::vector<std::variant<Electrode, SlowKind>> contents;
    EdfHeader header;
    double headRate = 0;          ///< the rate at which the head is modelled, in hertz
    std::int64_t headSamples = 0; ///< of it in a record
    AnnotationWriter annotations;
};

/// Works out what `options` ask for. Nothing when that is impossible; `reason` then names the
/// option and its value.
[[nodiscard]] std::optional<RecordingPlan> planRecording(const SynthOptions& options,
                                                         std::string& reason);

} // namespace kvsig::tool
