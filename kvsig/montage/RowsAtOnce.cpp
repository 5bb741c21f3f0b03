#include "kvsig/montage/RowsAtOnce.h"

#include "kvsig/montage/DataSource.h"
#include "kvsig/util/SampleRange.h"

#include <algorithm>
#include <new>

namespace kvsig {
namespace {

// Rows that lie a multiple of a page apart would drive each other out of the nearest cache.
std::size_t distanceOf(int count) {
    constexpr std::size_t shift = 16;
    return IIRCascade::roomFor(count) + shift;
}

} // namespace

void RowsAtOnce::add(DataSource& source, float* buf) {
    if (postpone(source, buf))
        return;
    // Filter objects are shared: they are used, and left behind, in the order of the sources.
    if (source.useFilter())
        filterPending();
    noteCount(source.getData(m_first, m_last, buf, m_scale));
}

int RowsAtOnce::finish() {
    filterPending();
    return std::max(m_least, 0);
}

void RowsAtOnce::noteCount(int delivered) {
    m_least = m_least < 0 ? delivered : std::min(m_least, delivered);
}

// The first part of what DataSource::getData() does, for a source whose filters can wait. False,
// and the source is to be asked itself, wherever something is out of the ordinary.
bool RowsAtOnce::postpone(DataSource& source, float* buf) {
    const int wanted = rangeLength(m_first, m_last);
    if (wanted == 0 || !source.useFilter())
        return false;
    const auto cascade = IIRCascade::of(*source.filters());
    if (!cascade)
        return false;
    const int cached = source.useCache()
                           ? std::clamp(source.readCache(m_first, m_last, buf, m_scale), 0, wanted)
                           : 0;
    if (cached == wanted) {
        noteCount(wanted);
        return true;
    }
    const long from = m_first + cached;
    const int before = source.filters()->nPrePts();
    const int count = canWiden(from, m_last, before, 0) ? rangeLength(from - before, m_last) : 0;
    if (count < IIRCascade::shortestBlock || !makeRoom(count) ||
        source._getData(from - before, m_last, m_work.data() + m_used, m_scale) != count)
        return false;
    Pending& pending = m_pending[m_count++];
    pending.source = &source;
    pending.buf = buf;
    pending.cascade = *cascade;
    pending.work = m_used;
    pending.count = count;
    pending.before = before;
    pending.row.out = buf + cached;
    pending.filtered = false;
    m_used += distanceOf(count);
    return true;
}

bool RowsAtOnce::makeRoom(int count) {
    const std::size_t distance = distanceOf(count);
    if (distance > mostRoom / 2)
        return false;
    if (m_count == mostPending || m_used + distance > mostRoom)
        filterPending();
    try {
        m_work.resize(std::max(m_work.size(), m_used + distance));
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

void RowsAtOnce::filterPending() {
    for (std::size_t i = 0; i < m_count; ++i)
        if (!m_pending[i].filtered)
            filterLike(m_pending[i]);
    for (std::size_t i = 0; i < m_count; ++i) {
        const Pending& done = m_pending[i];
        IIRCascade::remember(*done.source->filters(), done.row.last);
        if (done.source->useCache())
            done.source->writeCache(m_first, m_last, done.buf, m_scale);
        noteCount(rangeLength(m_first, m_last));
    }
    m_count = 0;
    m_used = 0;
}

// Filters a source, and with it as many as go side by side.
void RowsAtOnce::filterLike(Pending& model) {
    std::array<IIRCascade::Row*, IIRCascade::mostRows> rows;
    std::size_t rowCount = 0;
    for (Pending* other = &model; other != m_pending.data() + m_count && rowCount < rows.size();
         ++other) {
        // A cascade need not be equal to itself: weights may be NaN.
        const bool alike =
            other == &model || (!other->filtered && other->count == model.count &&
                                other->before == model.before && other->cascade == model.cascade);
        if (!alike)
            continue;
        other->row.in = m_work.data() + other->work;
        other->filtered = true;
        rows[rowCount++] = &other->row;
    }
    model.cascade.apply(rows.data(), static_cast<int>(rowCount), model.count, model.before);
}

} // namespace kvsig
