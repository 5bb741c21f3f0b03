#include "kvsig/readers/BDFReader.h"

#include "kvsig/readers/EdfHeader.h"
#include "kvsig/readers/RecordDemux.h"

#include <algorithm>

namespace kvsig {

bool BDFReader::isFileType(const char* path) {
    File file;
    return file.open(path) && readHeaderField(HeaderBlock::readFrom(file, edf::fixedLength),
                                              edf::version.offset, edf::version.width) == "\xFF"
                                                                                          "BIOSEMI";
}

bool BDFReader::openFile() {
    if (!EDF90Reader::openFile())
        return false;
    if (mixedRates())
        report(OpenFinding::Severity::warning,
               "signals of different rates in 24-bit samples: all of them read as flat zeros");
    return true;
}

int BDFReader::bytesPerSample() { return 4; }
int BDFReader::storedSampleBytes() const { return 3; }

// Chunks take the channels one after another from the record's first byte on, whatever other
// signals stand between them.
const RecordLayout* BDFReader::recordLayout() {
    const RecordLayout* layout = EDF90Reader::recordLayout();
    if (!layout || mixedRates())
        return nullptr;
    const auto before = static_cast<std::int64_t>(layout->channels.size()) - 1;
    return layout->channels.back().offset == before * layout->points ? layout : nullptr;
}

void BDFReader::demuxRecord(const std::byte* record, std::size_t bytes, short* frames) {
    auto* out = static_cast<std::int32_t*>(static_cast<void*>(frames));
    const std::int64_t points = _minReadPts();
    if (mixedRates())
        std::fill_n(out, points * channelCount(), 0);
    else
        demuxRecord24({record, bytes}, channelCount(), points, out);
}

} // namespace kvsig
