#include "compliance/ReaderRow.h"
#include "kvsig/readers/InterleavedReader.h"
#include "kvsig/readers/PushableReader.h"
#include "kvsig/readers/SnapshotReader.h"
#include "kvsig/util/File.h"
#include "support/RawFile.h"
#include "support/SameSamples.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace kvsig::test {
namespace {

constexpr const char* sections = "[ChannelMap]\nFp1-Ref=1\nFp2-Ref=2\nEKG-Arm=3\n"
                                 "[SampleTimes]\n0=86390.000\n";

// A host that pushes each page as it is asked for.
class PushingReader : public PushableReader {
  public:
    int getSampleChunk(long firstSample, short* buffer) override {
        const std::int64_t frameBytes = 2 * std::max<int>(channelCount(), 1);
        std::string page(static_cast<std::size_t>(chunkPts() * frameBytes), '\0');
        File file;
        std::int64_t bytes = 0;
        if (firstSample >= 0 && std::in_range<std::int32_t>(firstSample) &&
            file.open(filePath().c_str()))
            bytes = file.readAt(headerLength() + firstSample * frameBytes, page.data(),
                                static_cast<std::int64_t>(page.size()));
        pushBuffer(bytes < frameBytes ? nullptr : page.data(),
                   static_cast<int>(bytes / frameBytes * frameBytes));
        return PushableReader::getSampleChunk(firstSample, buffer);
    }
};

SampleRecording sampleOf(RawFile file, int dataType) {
    // Of one-byte samples the kernel counts half. The other half is there: with whole pages, what
    // lies behind the last sample is not seen.
    const bool oneByte = dataType == 6;
    const long counted = oneByte ? 640 : 752;
    file.dataType(dataType).frames(oneByte ? 2 * counted : counted).sections(sections);
    SampleRecording made;
    made.bytes = file.bytes();
    if (!oneByte)
        made.bytes += "half"; // of a frame
    made.fileName = "sample.raw";
    made.boundaries = {0, 16};
    made.channels = 3;
    made.samplingRate = 32;
    made.sampleCount = made.storedSampleCount = counted;
    made.chunkEnd = oneByte ? 2 * counted : counted;
    made.startClock = 86390;
    made.raw = [file](int channel, long index) { return file.count(channel, index); };
    made.attributes = file.attributes();
    return made;
}

template <typename Reader>
ReaderRow row(const char* name, int type, int dataType) {
    return {name,
            type,
            8,
            [=] { return sampleOf(RawFile(), dataType); },
            [] { return std::make_unique<Reader>(); },
            [] { return std::make_unique<FramesOnly<Reader>>(); }};
}

} // namespace

std::vector<ReaderRow> rawRows() {
    return {
        row<InterleavedReader>("Interleaved", 1, 0),
        row<InterleavedReader>("InterleavedBigEndian", 1, 4),
        row<InterleavedReader>("InterleavedOneByte", 1, 6),
        row<SnapshotReader>("Snapshot", 39, 0),
        row<PushingReader>("Pushable", 43, 0),
    };
}

} // namespace kvsig::test
