#pragma once

#include "tool/synth/Annotations.h"
#include "tool/synth/RecordBuffer.h"
#include "tool/synth/RecordingPlan.h"
#include "tool/synth/ScalpModel.h"
#include "tool/synth/SlowSignal.h"
#include "tool/synth/SynthOptions.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kvsig::tool {

/// Makes a planned recording record by record. The memory it takes is that of one record, however
/// long the recording is.
class SynthRecording {
  public:
    SynthRecording(const RecordingPlan& plan, const SynthOptions& options);

    /// The bytes of the next record, valid until the next call.
    std::span<const std::byte> nextRecord();

  private:
    /// A channel of the head, brought down to its own rate by averaging.
    struct HeadChannel {
        std::size_t signal;
        std::int64_t samples; ///< in a record
        double sum = 0;
        int summed = 0;
        std::int64_t done = 0; ///< samples of this record that are stored
    };
    struct SlowChannel {
        std::size_t signal;
        std::int64_t samples;
        SlowSignal source;
    };

    void fillHead();
    void store(HeadChannel& channel, std::int64_t position, std::span<const float> values);
    void fillSlow(SlowChannel& channel);
    void noteEyeEvents();

    EdfHeader m_header;
    double m_headRate;
    std::int64_t m_headSamples;
    RecordBuffer m_record;
    ScalpModel m_head;
    std::vector<HeadChannel> m_headChannels;
    std::vector<SlowChannel> m_slowChannels;
    AnnotationWriter m_annotations;
    std::int64_t m_recordIndex = 0;
};

} // namespace kvsig::tool
