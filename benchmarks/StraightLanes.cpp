#include "StraightLanes.h"

#include <algorithm>
#include <cstddef>

namespace kvsig::bench {
namespace {

constexpr std::int64_t tile = 64; // samples
constexpr std::size_t tileSize = tile;

/// Inputs and outputs of the three recurrences, lane by lane.
template <std::size_t Lanes>
struct Histories {
    float lowX[Lanes], lowY[Lanes];
    float highX[Lanes], highY[Lanes];
    float x1[Lanes], x2[Lanes], y1[Lanes], y2[Lanes];
};

// The first samples are history: one of the first order's, two of the notch.
template <std::size_t Lanes>
void prime(const PagingChain& chain, Histories<Lanes>& past, float* block) {
    const auto& [low, high, notch, runIn] = chain;
    float* const next = block + Lanes;
    for (std::size_t i = 0; i < Lanes; ++i) {
        past.lowX[i] = past.lowY[i] = past.highX[i] = past.highY[i] = block[i];
        past.x2[i] = past.y2[i] = block[i];
        const float x = next[i];
        const float lowPassed = low.b0 * x + low.b1 * past.lowX[i] + low.a1 * past.lowY[i];
        const float highPassed =
            high.b0 * lowPassed + high.b1 * past.highX[i] + high.a1 * past.highY[i];
        past.lowX[i] = x;
        past.lowY[i] = past.highX[i] = lowPassed;
        past.highY[i] = past.x1[i] = past.y1[i] = next[i] = highPassed;
    }
}

template <std::size_t Lanes>
void run(const PagingChain& chain, Histories<Lanes>& kept, float* block, std::int64_t from,
         std::int64_t to) {
    const Recurrence low = chain.lowPass;
    const Recurrence high = chain.highPass;
    const Recurrence notch = chain.notch;
    Histories<Lanes> past = kept;
    for (std::int64_t t = from; t < to; ++t) {
        float* const at = block + t * static_cast<std::int64_t>(Lanes);
#pragma omp simd
        for (std::size_t i = 0; i < Lanes; ++i) {
            const float x = at[i];
            const float lowPassed = low.b0 * x + low.b1 * past.lowX[i] + low.a1 * past.lowY[i];
            const float highPassed =
                high.b0 * lowPassed + high.b1 * past.highX[i] + high.a1 * past.highY[i];
            const float y = notch.b0 * highPassed + notch.b1 * past.x1[i] + notch.b2 * past.x2[i] +
                            notch.a1 * past.y1[i] + notch.a2 * past.y2[i];
            past.lowX[i] = x;
            past.lowY[i] = past.highX[i] = lowPassed;
            past.highY[i] = highPassed;
            past.x2[i] = past.x1[i];
            past.x1[i] = highPassed;
            past.y2[i] = past.y1[i];
            past.y1[i] = y;
            at[i] = y;
        }
    }
    kept = past;
}

template <std::size_t Lanes>
void laneRows(const PagingChain& chain, std::span<const StraightRow> rows, std::int64_t length) {
    alignas(64) float differences[Lanes * tileSize] = {};
    alignas(64) float block[Lanes * tileSize];
    Histories<Lanes> past{};
    for (std::int64_t start = 0; start < length; start += tile) {
        const std::int64_t count = std::min(tile, length - start);
        for (std::size_t r = 0; r < rows.size(); ++r)
            for (std::int64_t t = 0; t < count; ++t)
                differences[r * tileSize + static_cast<std::size_t>(t)] =
                    rows[r].first[start + t] - rows[r].second[start + t];
        for (std::size_t t = 0; t < tileSize; ++t)
            for (std::size_t i = 0; i < Lanes; ++i)
                block[t * Lanes + i] = differences[i * tileSize + t];
        if (start == 0)
            prime(chain, past, block);
        run(chain, past, block, start == 0 ? 2 : 0, count);
        const std::int64_t skipped = std::max<std::int64_t>(chain.runIn - start, 0);
        if (skipped >= count)
            continue;
        for (std::size_t t = 0; t < tileSize; ++t)
            for (std::size_t i = 0; i < Lanes; ++i)
                differences[i * tileSize + t] = block[t * Lanes + i];
        for (std::size_t r = 0; r < rows.size(); ++r)
            std::copy_n(differences + r * tileSize + skipped, count - skipped,
                        rows[r].out + (start + skipped - chain.runIn));
    }
}

} // namespace

void straightLanes(const PagingChain& chain, std::span<const StraightRow> rows,
                   std::int64_t length) {
    constexpr std::size_t many = 16;
    constexpr std::size_t few = 8;
    while (!rows.empty()) {
        const std::size_t lanes = rows.size() > few ? many : few;
        const auto taken = rows.first(std::min(rows.size(), lanes));
        if (lanes == many)
            laneRows<many>(chain, taken, length);
        else
            laneRows<few>(chain, taken, length);
        rows = rows.subspan(taken.size());
    }
}

} // namespace kvsig::bench
