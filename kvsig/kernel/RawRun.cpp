#include "kvsig/kernel/RawRun.h"

#include "kvsig/util/ByteOrder.h"
#include "kvsig/util/WideLoops.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace kvsig {
namespace {

template <typename Integer>
struct Native {
    static constexpr std::int64_t width = sizeof(Integer);
    [[gnu::always_inline]] static Integer at(const std::byte* bytes) {
        Integer value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }
};
struct Little16 {
    static constexpr std::int64_t width = 2;
    [[gnu::always_inline]] static std::int16_t at(const std::byte* bytes) {
        return loadLittle16(bytes);
    }
};
struct Little24 {
    static constexpr std::int64_t width = 3;
    [[gnu::always_inline]] static std::int32_t at(const std::byte* bytes) {
        return loadLittle24(bytes);
    }
};

// Samples that follow each other without a gap have a loop of their own: the compiler must know the
// distance to load several at once.
template <typename Code, typename Put>
[[gnu::always_inline]] inline void visitCode(const RawRun& run, Put put) {
    const std::byte* block = run.bytes;
    std::int64_t first = run.first;
    for (std::int64_t done = 0; done < run.count;) {
        const std::int64_t end = std::min(done + run.points - first, run.count);
        const std::byte* bytes = block + first * run.step;
        if (run.step == Code::width)
            for (std::int64_t i = 0; i < end - done; ++i)
                put(done + i, Code::at(bytes + i * Code::width));
        else
            for (std::int64_t i = 0; i < end - done; ++i)
                put(done + i, Code::at(bytes + i * run.step));
        done = end;
        block += run.blockStep;
        first = 0;
    }
}

template <typename Put>
[[gnu::always_inline]] inline void visit(const RawRun& run, Put put) {
    switch (run.code) {
    case RawCode::native16:
        return visitCode<Native<std::int16_t>>(run, put);
    case RawCode::native32:
        return visitCode<Native<std::int32_t>>(run, put);
    case RawCode::little16:
        return visitCode<Little16>(run, put);
    case RawCode::little24:
        return visitCode<Little24>(run, put);
    }
}

struct Scaled {
    double scale;
    [[gnu::always_inline]] double operator()(double raw) const { return raw * scale; }
};
struct Mapped {
    ValueMap map;
    [[gnu::always_inline]] double operator()(double raw) const {
        return ((raw - map.digitalLow) * map.physioSpan / map.digitalSpan + map.physioLow) *
               map.scale;
    }
};

template <typename Out, typename Value>
struct Store {
    Out* out;
    Value value;
    template <typename Raw>
    [[gnu::always_inline]] void operator()(std::int64_t i, Raw raw) const {
        out[i] = static_cast<Out>(value(static_cast<double>(raw)));
    }
};
struct StoreFloats {
    float* out;
    FloatScale scale;
    template <typename Raw>
    [[gnu::always_inline]] void operator()(std::int64_t i, Raw raw) const {
        out[i] = scale.times(static_cast<float>(raw));
    }
};
template <typename Value>
struct Add {
    float* out;
    Value value;
    template <typename Raw>
    [[gnu::always_inline]] void operator()(std::int64_t i, Raw raw) const {
        out[i] = static_cast<float>(static_cast<double>(out[i]) + value(static_cast<double>(raw)));
    }
};
struct Copy {
    std::int32_t* out;
    template <typename Raw>
    [[gnu::always_inline]] void operator()(std::int64_t i, Raw raw) const {
        out[i] = raw;
    }
};

KVSIG_WIDE_LOOPS void store(const RawRun& run, const ValueMap& map, float* out) {
    if (map.linear)
        visit(run, Store<float, Mapped>{out, {map}});
    else if (map.floats)
        visit(run, StoreFloats{out, *map.floats});
    else
        visit(run, Store<float, Scaled>{out, {map.scale}});
}

KVSIG_WIDE_LOOPS void store(const RawRun& run, const ValueMap& map, double* out) {
    if (map.linear)
        visit(run, Store<double, Mapped>{out, {map}});
    else
        visit(run, Store<double, Scaled>{out, {map.scale}});
}

KVSIG_WIDE_LOOPS void add(const RawRun& run, const ValueMap& map, float* out) {
    if (map.linear)
        visit(run, Add<Mapped>{out, {map}});
    else
        visit(run, Add<Scaled>{out, {map.scale}});
}

KVSIG_WIDE_LOOPS void copy(const RawRun& run, std::int32_t* out) { visit(run, Copy{out}); }

struct Assign {
    template <typename Value>
    [[gnu::always_inline]] void operator()(Value& held, Value value) const {
        held = value;
    }
};
struct AddTo {
    [[gnu::always_inline]] void operator()(float& held, double value) const {
        held = static_cast<float>(static_cast<double>(held) + value);
    }
};

template <int times, typename Value, typename Out, typename Join>
void joinEach(const Value* values, std::int64_t count, Out* out, Join join) {
    for (std::int64_t i = 0; i < count; ++i)
        for (int t = 0; t < times; ++t)
            join(out[times * i + t], values[i]);
}

// The stretches that mixed recordings have most are loops that the compiler unrolls. False for
// others.
template <typename Value, typename Out, typename Join>
bool joinUsual(std::int64_t times, const Value* values, std::int64_t count, Out* out, Join join) {
    switch (times) {
    case 2:
        joinEach<2>(values, count, out, join);
        return true;
    case 4:
        joinEach<4>(values, count, out, join);
        return true;
    case 8:
        joinEach<8>(values, count, out, join);
        return true;
    default:
        return false;
    }
}

// Whole samples of a block, one after the other: what is converted before it is repeated.
RawRun storedSamples(const RawRun& block, std::int64_t first, std::int64_t count) {
    RawRun part = block;
    part.bytes += first * block.step;
    part.samples = part.points = part.count = count;
    part.first = 0;
    return part;
}

// One block, in pieces that stay in the nearest cache: `convert` makes values of samples, `join`
// puts each where it is shown.
template <typename Value, typename Out, typename Convert, typename Join>
void stretchBlock(const RawRun& run, Out* out, Convert convert, Join join) {
    constexpr std::int64_t pieceSamples = 512;
    Value piece[pieceSamples];
    const std::int64_t times = run.points % run.samples == 0 ? run.points / run.samples : 0;
    // The first value that shows sample i is that of number ceil(i * points / samples).
    const auto shownFrom = [&run, times](std::int64_t i) {
        return times != 0 ? i * times : (i * run.points + run.samples - 1) / run.samples;
    };
    const std::int64_t end = run.first + run.count;
    std::int64_t next = run.first;
    const std::int64_t lastSample = (end - 1) * run.samples / run.points;
    for (std::int64_t sample = run.first * run.samples / run.points; sample <= lastSample;) {
        const std::int64_t count = std::min(pieceSamples, lastSample - sample + 1);
        convert(storedSamples(run, sample, count), piece);
        std::int64_t i = 0;
        if (times != 0 && next == times * sample) {
            const std::int64_t whole = std::min(count, (end - next) / times);
            if (joinUsual(times, piece, whole, out + (next - run.first), join)) {
                i = whole;
                next += times * whole;
            }
        }
        for (; i < count; ++i)
            for (const auto stop = std::min(shownFrom(sample + i + 1), end); next < stop; ++next)
                join(out[next - run.first], piece[i]);
        sample += count;
    }
}

template <typename Value, typename Out, typename Convert, typename Join>
void stretch(RawRun run, Out* out, Convert convert, Join join) {
    for (std::int64_t left = run.count; left > 0; left -= run.count) {
        run.count = std::min(run.points - run.first, left);
        stretchBlock<Value>(run, out, convert, join);
        out += run.count;
        run.bytes += run.blockStep;
        run.first = 0;
    }
}

bool isStretched(const RawRun& run) { return run.samples != run.points; }

} // namespace

void mapValues(const RawRun& run, const ValueMap& map, bool accumulate, float* out) {
    if (run.count <= 0)
        return;
    if (!isStretched(run))
        accumulate ? add(run, map, out) : store(run, map, out);
    else if (accumulate)
        stretch<double>(
            run, out, [&map](const RawRun& part, double* to) { store(part, map, to); }, AddTo());
    else
        stretch<float>(
            run, out, [&map](const RawRun& part, float* to) { store(part, map, to); }, Assign());
}

void copyRaw(const RawRun& run, std::int32_t* out) {
    if (run.count <= 0)
        return;
    if (isStretched(run))
        stretch<std::int32_t>(run, out, copy, Assign());
    else
        copy(run, out);
}

} // namespace kvsig
