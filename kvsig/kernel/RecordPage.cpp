#include "kvsig/kernel/RecordPage.h"

#include <algorithm>

namespace kvsig {
namespace {

// What stands in the place of samples that the file does not hold; its step is 0.
constexpr std::byte zeroSample[4] = {};

std::int64_t firstRecord(const DataPage& page, const RecordLayout& layout) {
    return page.start / layout.points;
}

const RecordChannel& placeOf(const RecordLayout& layout, int channel) {
    return layout.channels[static_cast<std::size_t>(channel)];
}

// The channel's samples stand one after another in the page.
bool loadChannel(DataPage& page, const RecordLayout& layout, int channel) {
    const RecordChannel& place = placeOf(layout, channel);
    const std::int64_t bytes = place.samples * layout.sampleBytes;
    std::int64_t position = layout.dataOffset + firstRecord(page, layout) * layout.recordBytes() +
                            place.offset * layout.sampleBytes;
    std::byte* out = page.buffer.data();
    for (std::int64_t r = 0; r < page.records; ++r, out += bytes, position += layout.recordBytes())
        if (layout.file->readAt(position, out, bytes) < bytes)
            return false;
    return true;
}

void loadEveryChannel(DataPage& page, const RecordLayout& layout) {
    const std::int64_t recordBytes = layout.recordBytes();
    const std::int64_t position = layout.dataOffset + firstRecord(page, layout) * recordBytes;
    const std::int64_t arrived =
        layout.file->readAt(position, page.buffer.data(), page.records * recordBytes);
    page.records = std::min(page.records, arrived / recordBytes);
}

bool makeRoom(DataPage& page, std::int64_t bytes) {
    if (!page.buffer.reserve(bytes)) {
        page.firstChannel = -1;
        return false;
    }
    page.buffer.use(bytes);
    return true;
}

} // namespace

std::int64_t beginRecordPage(DataPage& page, const RecordLayout& layout) {
    const std::int64_t points = std::int64_t{page.end} - page.start + 1;
    page.kind = PageKind::records;
    page.firstChannel = -1;
    page.everyChannel = false;
    page.lostSamples = false;
    page.records = std::clamp<std::int64_t>(layout.wholeRecords() - firstRecord(page, layout), 0,
                                            points / layout.points);
    return page.records * layout.points;
}

bool isSparse(const RecordLayout& layout, int channel) {
    constexpr std::int64_t costOfARead = 4096; // bytes that are copied in the time of a system call
    return (layout.recordSamples - placeOf(layout, channel).samples) * layout.sampleBytes >
           costOfARead;
}

bool loadOneChannel(DataPage& page, const RecordLayout& layout, int channel) {
    if (!makeRoom(page, page.records * placeOf(layout, channel).samples * layout.sampleBytes))
        return false;
    if (!loadChannel(page, layout, channel))
        return loadWholeRecords(page, layout, channel);
    page.firstChannel = channel;
    page.everyChannel = false;
    return true;
}

bool loadWholeRecords(DataPage& page, const RecordLayout& layout, int channel) {
    if (!makeRoom(page, page.records * layout.recordBytes()))
        return false;
    loadEveryChannel(page, layout);
    if (page.firstChannel < 0)
        page.firstChannel = channel;
    page.everyChannel = true;
    return true;
}

RawRun recordRun(const DataPage& page, const RecordLayout& layout, int channel, long first,
                 std::int64_t count) {
    // 32 bits are enough inside a page, and divide faster.
    const auto inPage = static_cast<std::int32_t>(first - page.start);
    const auto points = static_cast<std::int32_t>(layout.points);
    const std::int64_t held = page.records * points - inPage;
    RawRun run{.code = layout.sampleBytes == 3 ? RawCode::little24 : RawCode::little16,
               .bytes = zeroSample};
    if (held <= 0) {
        run.points = run.samples = run.count = count;
        return run;
    }
    const RecordChannel& place = placeOf(layout, channel);
    const std::int32_t record = inPage / points;
    run.step = layout.sampleBytes;
    run.blockStep = page.everyChannel ? layout.recordBytes() : place.samples * run.step;
    run.bytes = page.buffer.data() + record * run.blockStep +
                (page.everyChannel ? place.offset * run.step : 0);
    run.samples = place.samples;
    run.points = points;
    run.first = inPage - record * points;
    run.count = std::min(count, held);
    return run;
}

} // namespace kvsig
