#include "kvsig/kernel/PlanarPage.h"
#include "kvsig/kernel/RawRun.h"
#include "kvsig/kernel/ReaderState.h"
#include "kvsig/kernel/RecordPage.h"
#include "kvsig/util/SampleRange.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <cmath>
#include <utility>

// The samples of a reader: chunks, pages and the values made of them.
namespace kvsig {

int DataReader::chunkPts() { return _minReadPts(); }

// The two chunk defaults call each other on purpose: a format overrides at least one. When it
// overrides neither, the second default finds the first one at work and there is no data.
int DataReader::getSampleChunk(long firstSample, short* buffer) {
    const std::int64_t frameBytes = m_state->frameLayout().frameBytes();
    const bool inRange = firstSample >= 0 && std::in_range<std::int32_t>(firstSample);
    const std::int64_t position = inRange ? firstSample * frameBytes : -1;
    if (m_state->inChunkDefault || frameBytes <= 0 || position < 0 ||
        !std::in_range<long>(position))
        return 0;
    m_state->inChunkDefault = true;
    const int bytes = getChunk(static_cast<long>(position), buffer,
                               saturate<int>(std::max(chunkPts(), 1) * frameBytes));
    m_state->inChunkDefault = false;
    return saturate<int>(bytes / frameBytes);
}

int DataReader::getChunk(long bytePos, short* buffer, int) {
    const std::int64_t frameBytes = m_state->frameLayout().frameBytes();
    if (m_state->inChunkDefault || frameBytes <= 0 || bytePos < 0)
        return 0;
    m_state->inChunkDefault = true;
    const int samples = getSampleChunk(saturate<long>(bytePos / frameBytes), buffer);
    m_state->inChunkDefault = false;
    return saturate<int>(samples * frameBytes);
}

const RecordLayout* DataReader::recordLayout() { return nullptr; }
std::span<const int> DataReader::channelsStoredWith(int) { return {}; }
std::int64_t DataReader::readPlanes(int, long, std::int64_t, const SamplePlanes&) { return 0; }

namespace {

RawRun runOf(const PageCache::Found& found, PageSource& source, int channel, long first,
             std::int64_t count) {
    switch (found.page->kind) {
    case PageKind::records:
        return recordRun(*found.page, *found.records, channel, first, count);
    case PageKind::planes:
        return planarRun(*found.page, source.frameLayout(), channel, first, count);
    case PageKind::frames:
        return frameRun(*found.page, source.frameLayout(), channel, first, count);
    }
    return {};
}

} // namespace

// Walks `first`..`last` in runs: consume(offset, count, run) with the offset of the run's first
// sample from `first`, and a null run where there are no pages.
template <typename Consume>
int DataReader::forEachRun(int channel, long first, long last, Consume consume) {
    const std::int64_t count = rangeLength(first, last);
    if (count == 0)
        return 0;
    const std::int64_t beforeStart = first >= 0 ? 0 : last < 0 ? count : -std::int64_t{first};
    if (beforeStart > 0)
        consume(std::int64_t{0}, beforeStart, static_cast<const RawRun*>(nullptr));
    std::int64_t done = beforeStart;
    while (done < count) {
        const long index = static_cast<long>(first + done);
        const PageCache::Found found = channelRecord(channel)
                                           ? m_state->pages.pageAt(index, channel, *m_state)
                                           : PageCache::Found{};
        if (!found.page) {
            consume(done, count - done, static_cast<const RawRun*>(nullptr));
            break;
        }
        const std::int64_t length =
            std::min(count - done, std::int64_t{found.page->end} - index + 1);
        const RawRun run = runOf(found, *m_state, channel, index, length);
        consume(done, run.count, &run);
        done += run.count;
    }
    return static_cast<int>(count);
}

int DataReader::getData(int channel, long first, long last, float* out, double gain,
                        int accumulate) {
    ValueMap map;
    map.linear = channelType(channel) == 100;
    map.scale = calibration(channel) * gain;
    if (map.linear) {
        map.digitalLow = digitalLow(channel);
        map.digitalSpan = static_cast<double>(digitalHigh(channel)) - map.digitalLow;
        map.physioLow = physioLow(channel);
        map.physioSpan = physioHigh(channel) - map.physioLow;
    }
    return forEachRun(channel, first, last,
                      [&](std::int64_t offset, std::int64_t count, const RawRun* run) {
                          if (run && accumulate == 0 && !map.linear)
                              map.floats = m_state->scales.find(map.scale, run->code, count);
                          if (run)
                              mapValues(*run, map, accumulate != 0, out + offset);
                          else if (accumulate == 0)
                              std::fill_n(out + offset, count, 0.0F);
                      });
}

int DataReader::getRawData(int channel, long first, long last, std::int32_t* out) {
    return forEachRun(channel, first, last,
                      [&](std::int64_t offset, std::int64_t count, const RawRun* run) {
                          if (run)
                              copyRaw(*run, out + offset);
                          else
                              std::fill_n(out + offset, count, 0);
                      });
}

DataPage* DataReader::pageAtIndex(long index) { return m_state->pages.framesAt(index, *m_state); }

bool DataReader::readPageAtIndex(DataPage* page, long index) {
    return page && index >= 0 && m_state->pages.readFrames(*page, index, *m_state);
}

short DataReader::getMaxPages() { return m_state->pages.maxPages; }
void DataReader::setMaxPages(short count) { m_state->pages.maxPages = count; }
int DataReader::getPagePts() { return m_state->pages.pagePoints; }

void DataReader::setPageDuration(double seconds) {
    const double points = seconds * samplingRate();
    const std::int32_t chunk = std::max(_minReadPts(), 1);
    const std::int32_t whole = std::isfinite(points) ? saturate<std::int32_t>(points) : 0;
    m_state->pages.pagePoints = std::max(whole / chunk, 1) * chunk;
}

void DataReader::flushPages(bool incompleteOnly) {
    if (incompleteOnly)
        m_state->pages.flushIncomplete();
    else
        m_state->pages.flushAll();
}

void DataReader::forgetSamples() {
    setMaxDataIndex(-1);
    m_state->pages.pagePoints = 0;
    if (m_state->pages.size() > 0)
        flushPages(false);
}

} // namespace kvsig
