#include "kvsig/kernel/FrameValues.h"

namespace kvsig {
namespace {

// Calls `each(i, raw)` for the run's samples, with the sample width settled outside the loop.
template <typename Raw, typename Each>
void visitRaw(const PageRun& run, Each each) {
    const auto* raw = static_cast<const Raw*>(static_cast<const void*>(run.page.buffer.data()));
    const std::int64_t stride = run.layout.channels;
    raw += (run.first - run.page.start) * stride + run.channel;
    for (std::int64_t i = 0; i < run.count; ++i)
        each(i, raw[i * stride]);
}

template <typename Each>
void visit(const PageRun& run, Each each) {
    if (run.layout.bytesPerSample == 2)
        visitRaw<std::int16_t>(run, each);
    else
        visitRaw<std::int32_t>(run, each);
}

template <typename Value>
void mapEach(const PageRun& run, bool accumulate, float* out, Value value) {
    if (accumulate)
        visit(run, [=](std::int64_t i, auto raw) {
            out[i] =
                static_cast<float>(static_cast<double>(out[i]) + value(static_cast<double>(raw)));
        });
    else
        visit(run, [=](std::int64_t i, auto raw) {
            out[i] = static_cast<float>(value(static_cast<double>(raw)));
        });
}

} // namespace

void mapValues(const PageRun& run, const ValueMap& map, bool accumulate, float* out) {
    if (map.linear)
        mapEach(run, accumulate, out, [map](double raw) {
            return ((raw - map.digitalLow) * map.physioSpan / map.digitalSpan + map.physioLow) *
                   map.scale;
        });
    else
        mapEach(run, accumulate, out, [scale = map.scale](double raw) { return raw * scale; });
}

void copyRaw(const PageRun& run, std::int32_t* out) {
    visit(run, [out](std::int64_t i, auto raw) { out[i] = raw; });
}

} // namespace kvsig
