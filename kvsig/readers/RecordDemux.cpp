#include "kvsig/readers/RecordDemux.h"

#include "kvsig/util/ByteOrder.h"

#include <algorithm>

namespace kvsig {
namespace {

// How many of the wanted samples lie in the record.
std::int64_t samplesInside(std::int64_t recordSamples, std::int64_t offset, std::int64_t wanted) {
    if (offset < 0)
        return 0;
    return std::clamp<std::int64_t>(recordSamples - offset, 0, std::max<std::int64_t>(wanted, 0));
}

} // namespace

void demuxRecord16(std::span<const std::byte> record, std::span<const RecordChannel> channels,
                   std::int64_t points, std::int16_t* frames) {
    const auto recordSamples = static_cast<std::int64_t>(record.size() / 2);
    const auto stride = static_cast<std::int64_t>(channels.size());
    for (const RecordChannel& channel : channels) {
        std::int16_t* out = frames++;
        // A count below 0 would step backward, out of the record.
        const std::int64_t samples = std::max<std::int64_t>(channel.samples, 0);
        const std::int64_t inside = samplesInside(recordSamples, channel.offset, samples);
        const std::byte* source = record.data() + (inside > 0 ? 2 * channel.offset : 0);
        if (samples == points) {
            for (std::int64_t k = 0; k < points; ++k)
                out[k * stride] = k < inside ? loadLittle16(source + 2 * k) : std::int16_t{0};
            continue;
        }
        // Output k takes input i as long as k / points < (i + 1) / samples; in whole numbers that
        // is i = floor(k * samples / points).
        for (std::int64_t k = 0; k < points; ++k) {
            const std::int64_t i = k * samples / points;
            out[k * stride] = i < inside ? loadLittle16(source + 2 * i) : std::int16_t{0};
        }
    }
}

void demuxRecord24(std::span<const std::byte> record, std::int64_t channels, std::int64_t points,
                   std::int32_t* frames) {
    const auto recordSamples = static_cast<std::int64_t>(record.size() / 3);
    for (std::int64_t channel = 0; channel < channels; ++channel) {
        const std::int64_t offset = channel * points;
        const std::int64_t inside = samplesInside(recordSamples, offset, points);
        const std::byte* source = record.data() + (inside > 0 ? 3 * offset : 0);
        std::int32_t* out = frames + channel;
        for (std::int64_t k = 0; k < points; ++k)
            out[k * channels] = k < inside ? loadLittle24(source + 3 * k) : 0;
    }
}

} // namespace kvsig
