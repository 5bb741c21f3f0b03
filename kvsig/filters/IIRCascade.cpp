#include "kvsig/filters/IIRCascade.h"

#include "kvsig/filters/FilterList.h"
#include "kvsig/filters/IIRHighPass.h"
#include "kvsig/filters/IIRLowPass.h"
#include "kvsig/filters/IIRNotch.h"
#include "kvsig/util/WideLoops.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <typeinfo>

namespace kvsig {
namespace {

using Stage = IIRCascade::Stage;
using Stages = std::span<const Stage>;

constexpr int tile = IIRCascade::tile;

constexpr std::size_t sizeOf(int count) { return static_cast<std::size_t>(count); }

/// The histories of one filter in all lanes.
template <int Lanes>
struct LaneHistory {
    float x1[sizeOf(Lanes)], x2[sizeOf(Lanes)], y1[sizeOf(Lanes)], y2[sizeOf(Lanes)];
};

template <int Lanes>
using LaneHistories = std::array<LaneHistory<Lanes>, IIRCascade::mostFilters>;

// The order of the single-precision operations in these two is part of the result.

template <int Lanes>
[[gnu::always_inline]] inline float firstOrder(const Stage& stage, LaneHistory<Lanes>& past,
                                               int lane, float x) {
    const float y = stage.b0 * x + stage.b1 * past.x1[lane] + stage.a1 * past.y1[lane];
    past.x1[lane] = x;
    past.y1[lane] = y;
    return y;
}

template <int Lanes>
[[gnu::always_inline]] inline float secondOrder(const Stage& stage, LaneHistory<Lanes>& past,
                                                int lane, float x) {
    const float y = stage.b0 * x + stage.b1 * past.x1[lane] + stage.b2 * past.x2[lane] +
                    stage.a1 * past.y1[lane] + stage.a2 * past.y2[lane];
    past.x2[lane] = past.x1[lane];
    past.x1[lane] = x;
    past.y2[lane] = past.y1[lane];
    past.y1[lane] = y;
    return y;
}

// For one lane there is nothing to vectorise.
template <int Lanes, typename Each>
[[gnu::always_inline]] inline void eachLane(Each each) {
    if constexpr (Lanes == 1) {
        each(0);
    } else {
#pragma omp simd
        for (int lane = 0; lane < Lanes; ++lane)
            each(lane);
    }
}

// Runs up to two filters of the first order and then one of the second over samples from..to - 1
// of a block that holds the lanes of a sample side by side. Local histories stay in registers.
template <int Lanes, int Firsts, bool Second>
[[gnu::always_inline]] inline void run(const Stage* stages, LaneHistory<Lanes>* pasts, float* block,
                                       int from, int to) {
    constexpr int second = Firsts;
    const Stage stage0 = stages[0];
    const Stage stage1 = stages[Firsts > 1 ? 1 : 0];
    const Stage stage2 = stages[Second ? second : 0];
    LaneHistory<Lanes> past0 = pasts[0];
    LaneHistory<Lanes> past1 = pasts[Firsts > 1 ? 1 : 0];
    LaneHistory<Lanes> past2 = pasts[Second ? second : 0];
    for (int t = from; t < to; ++t) {
        float* const values = block + static_cast<std::ptrdiff_t>(t) * Lanes;
        eachLane<Lanes>([&](int lane) {
            float value = values[lane];
            if constexpr (Firsts > 0)
                value = firstOrder(stage0, past0, lane, value);
            if constexpr (Firsts > 1)
                value = firstOrder(stage1, past1, lane, value);
            if constexpr (Second)
                value = secondOrder(stage2, past2, lane, value);
            values[lane] = value;
        });
    }
    if constexpr (Firsts > 0)
        pasts[0] = past0;
    if constexpr (Firsts > 1)
        pasts[1] = past1;
    if constexpr (Second)
        pasts[second] = past2;
}

template <int Lanes>
[[gnu::always_inline]] inline void runStages(Stages stages, LaneHistory<Lanes>* pasts, float* block,
                                             int from, int to) {
    for (std::size_t done = 0; done < stages.size();) {
        const Stage* const stage = &stages[done];
        LaneHistory<Lanes>* const past = pasts + done;
        const std::size_t left = stages.size() - done;
        std::size_t firsts = 0;
        while (firsts < 2 && firsts < left && stage[firsts].order == 1)
            ++firsts;
        const bool second = firsts < left && stage[firsts].order == 2;
        if (firsts == 0)
            run<Lanes, 0, true>(stage, past, block, from, to);
        else if (firsts == 1 && !second)
            run<Lanes, 1, false>(stage, past, block, from, to);
        else if (firsts == 1)
            run<Lanes, 1, true>(stage, past, block, from, to);
        else if (!second)
            run<Lanes, 2, false>(stage, past, block, from, to);
        else
            run<Lanes, 2, true>(stage, past, block, from, to);
        done += firsts + (second ? 1 : 0);
    }
}

// A fresh start: each filter lets as many samples through unchanged as it has order.
template <int Lanes>
[[gnu::always_inline]] inline void prime(Stages stages, LaneHistory<Lanes>* pasts, float* block) {
    for (int t = 0; t < IIRCascade::shortestBlock; ++t)
        for (std::size_t s = 0; s < stages.size(); ++s) {
            const Stage stage = stages[s];
            LaneHistory<Lanes>& past = pasts[s];
            float* const values = block + static_cast<std::ptrdiff_t>(t) * Lanes;
            for (int lane = 0; lane < Lanes; ++lane) {
                if (t >= stage.order) {
                    values[lane] = firstOrder(stage, past, lane, values[lane]);
                    continue;
                }
                past.x2[lane] = past.x1[lane];
                past.y2[lane] = past.y1[lane];
                past.x1[lane] = past.y1[lane] = values[lane];
            }
        }
}

template <int Lanes>
IIRCascade::Histories historiesOf(const LaneHistories<Lanes>& pasts, int lane) {
    IIRCascade::Histories histories{};
    for (std::size_t s = 0; s < histories.size(); ++s)
        histories[s] = {pasts[s].x1[lane], pasts[s].x2[lane], pasts[s].y1[lane], pasts[s].y2[lane]};
    return histories;
}

// The two transpositions between rows and the block of a tile, whose sizes are known so that the
// compiler can do them in registers.

template <int Lanes>
[[gnu::always_inline]] inline void toLanes(const float* const* rows, int start, float* block) {
    for (int t = 0; t < tile; ++t)
#pragma GCC unroll 16
        for (int lane = 0; lane < Lanes; ++lane)
            block[t * Lanes + lane] = rows[lane][start + t];
}

template <int Lanes>
[[gnu::always_inline]] inline void toRows(const float* block, float* rows) {
    for (int t = 0; t < tile; ++t)
#pragma GCC unroll 16
        for (int lane = 0; lane < Lanes; ++lane)
            rows[lane * tile + t] = block[t * Lanes + lane];
}

template <int Lanes>
[[gnu::always_inline]] inline void runSideBySide(Stages stages, IIRCascade::Row* const* rows,
                                                 int rowCount, int count, int skip) {
    alignas(64) float block[sizeOf(tile * Lanes)];
    alignas(64) float results[sizeOf(tile * Lanes)];
    LaneHistories<Lanes> pasts{};
    // Lanes without a row do the first one's work.
    const float* in[sizeOf(Lanes)];
    for (int lane = 0; lane < Lanes; ++lane)
        in[lane] = rows[lane < rowCount ? lane : 0]->in;

    for (int start = 0; start < count; start += tile) {
        const int length = std::min(tile, count - start);
        toLanes<Lanes>(in, start, block);
        if (start == 0)
            prime<Lanes>(stages, pasts.data(), block);
        runStages<Lanes>(stages, pasts.data(), block, start == 0 ? IIRCascade::shortestBlock : 0,
                         length);
        const int skipped = std::max(skip - start, 0);
        if (skipped >= length)
            continue;
        toRows<Lanes>(block, results);
        for (int lane = 0; lane < rowCount; ++lane)
            std::copy_n(results + lane * tile + skipped, length - skipped,
                        rows[lane]->out + (start + skipped - skip));
    }
    for (int lane = 0; lane < rowCount; ++lane)
        rows[lane]->last = historiesOf<Lanes>(pasts, lane);
}

constexpr int fewRows = 8;

KVSIG_WIDE_LOOPS void runFewRows(Stages stages, IIRCascade::Row* const* rows, int rowCount,
                                 int count, int skip) {
    runSideBySide<fewRows>(stages, rows, rowCount, count, skip);
}

KVSIG_WIDE_LOOPS void runManyRows(Stages stages, IIRCascade::Row* const* rows, int rowCount,
                                  int count, int skip) {
    runSideBySide<IIRCascade::mostRows>(stages, rows, rowCount, count, skip);
}

IIRFilter* recursive(Filter* filter) {
    const std::type_info& type = typeid(*filter);
    const bool own = type == typeid(IIRLowPass) || type == typeid(IIRHighPass) ||
                     type == typeid(IIRNotch) || type == typeid(IIRFilter);
    return own && filter->nNumerWeights() > 0 ? static_cast<IIRFilter*>(filter) : nullptr;
}

} // namespace

std::optional<IIRCascade> IIRCascade::of(const FilterList& chain) {
    if (chain.count() < 1 || chain.count() > mostFilters)
        return std::nullopt;
    IIRCascade cascade;
    for (; cascade.m_count < chain.count(); ++cascade.m_count) {
        const IIRFilter* filter = recursive(chain.filter(cascade.m_count));
        if (!filter)
            return std::nullopt;
        const auto numerator = [&](int i) { return static_cast<float>(filter->getNumerWeight(i)); };
        const auto denominator = [&](int i) {
            return static_cast<float>(filter->getDenomWeight(i));
        };
        cascade.m_stages[sizeOf(cascade.m_count)] = {filter->nNumerWeights() - 1,
                                                     numerator(0),
                                                     numerator(1),
                                                     numerator(2),
                                                     denominator(1),
                                                     denominator(2)};
    }
    return cascade;
}

IIRCascade::Histories IIRCascade::apply(float* data, int count) const {
    const Stages stages(m_stages.data(), sizeOf(m_count));
    LaneHistories<1> pasts{};
    prime<1>(stages, pasts.data(), data);
    runStages<1>(stages, pasts.data(), data, shortestBlock, count);
    return historiesOf<1>(pasts, 0);
}

void IIRCascade::apply(Row* const* rows, int rowCount, int count, int skip) const {
    const Stages stages(m_stages.data(), sizeOf(m_count));
    if (rowCount <= fewRows)
        runFewRows(stages, rows, rowCount, count, skip);
    else
        runManyRows(stages, rows, rowCount, count, skip);
}

void IIRCascade::remember(const FilterList& chain, const Histories& last) {
    for (int i = 0; i < chain.count(); ++i)
        if (IIRFilter* filter = recursive(chain.filter(i))) {
            const IIRHistory& history = last[sizeOf(i)];
            filter->m_x1 = history.x1;
            filter->m_x2 = history.x2;
            filter->m_y1 = history.y1;
            filter->m_y2 = history.y2;
            filter->m_toPrime = 0;
        }
}

} // namespace kvsig
