#include "tool/synth/SynthRecording.h"

#include <algorithm>
#include <limits>

namespace kvsig::tool {
namespace {

std::vector<Electrode> electrodesOf(const RecordingPlan& plan) {
    std::vector<Electrode> electrodes;
    for (const auto& content : plan.contents)
        if (const auto* electrode = std::get_if<Electrode>(&content))
            electrodes.push_back(*electrode);
    return electrodes;
}

} // namespace

SynthRecording::SynthRecording(const RecordingPlan& plan, const SynthOptions& options)
    : m_header(plan.header),
      m_headRate(plan.headRate),
      m_headSamples(plan.headSamples),
      m_record(plan.header),
      m_head(electrodesOf(plan), plan.headRate, options.mains, options.seed),
      m_annotations(plan.annotations) {
    for (std::size_t i = 0; i < plan.contents.size(); ++i) {
        const std::int64_t samples = m_header.signals[i].samplesPerRecord;
        if (const auto* kind = std::get_if<SlowKind>(&plan.contents[i])) {
            const double rate = static_cast<double>(samples) / m_header.recordDuration;
            m_slowChannels.push_back({i, samples, SlowSignal(*kind, rate, options.seed, 500 + i)});
        } else {
            m_headChannels.push_back({i, samples});
        }
    }
}

std::span<const std::byte> SynthRecording::nextRecord() {
    m_annotations.beginRecord(static_cast<double>(m_recordIndex) * m_header.recordDuration);
    fillHead();
    for (SlowChannel& channel : m_slowChannels)
        fillSlow(channel);
    if (m_header.kind == EdfKind::edfPlus)
        m_record.putBytes(m_header.signals.size() - 1, m_annotations.bytes());
    ++m_recordIndex;
    return m_record.bytes();
}

void SynthRecording::fillHead() {
    for (HeadChannel& channel : m_headChannels)
        channel.done = 0;
    Block values;
    for (std::int64_t position = 0; position < m_headSamples;) {
        const std::int64_t left = m_headSamples - position;
        const std::size_t count = std::min(blockSize, static_cast<std::size_t>(left));
        m_head.advance(count);
        noteEyeEvents();
        for (std::size_t i = 0; i < m_headChannels.size(); ++i) {
            m_head.read(i, values);
            store(m_headChannels[i], position, {values.data(), count});
        }
        position += static_cast<std::int64_t>(count);
    }
}

void SynthRecording::store(HeadChannel& channel, std::int64_t position,
                           std::span<const float> values) {
    if (channel.samples == m_headSamples) {
        m_record.put(channel.signal, static_cast<std::size_t>(position), values);
        return;
    }
    for (const float value : values) {
        channel.sum += static_cast<double>(value);
        ++channel.summed;
        if (++position < (channel.done + 1) * m_headSamples / channel.samples)
            continue;
        const auto mean = static_cast<float>(channel.sum / channel.summed);
        m_record.put(channel.signal, static_cast<std::size_t>(channel.done++), {&mean, 1});
        channel.sum = 0;
        channel.summed = 0;
    }
}

void SynthRecording::fillSlow(SlowChannel& channel) {
    for (std::int64_t i = 0; i < channel.samples; ++i) {
        const float value = channel.source.next();
        m_record.put(channel.signal, static_cast<std::size_t>(i), {&value, 1});
    }
}

void SynthRecording::noteEyeEvents() {
    for (const ScalpModel::EyeEvent& event : m_head.eyeEvents())
        m_annotations.add(static_cast<double>(event.sample) / m_headRate,
                          event.closed ? eyesClosedText : eyesOpenText);
}

} // namespace kvsig::tool
