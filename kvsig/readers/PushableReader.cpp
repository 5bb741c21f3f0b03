#include "kvsig/readers/PushableReader.h"

#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kvsig {
namespace {

constexpr std::size_t longestPath = 260;

} // namespace

PushableReader::PushableReader() { DataReader::setFileType(43); }

void PushableReader::pushBuffer(const void* data, int bytes) {
    m_pending = data;
    m_pendingBytes = saturate<std::size_t>(bytes);
}

void PushableReader::addPart(const char* file, double seconds) {
    m_parts.push_back({std::string(viewOf(file).substr(0, longestPath)), seconds});
}

int PushableReader::fileCount() { return saturate<int>(m_parts.size()); }

const PushableReader::Part* PushableReader::findPart(int part) const {
    static const Part none;
    if (part < 0 || std::cmp_greater(part, m_parts.size()))
        return nullptr;
    return std::cmp_equal(part, m_parts.size()) ? &none : &m_parts[static_cast<std::size_t>(part)];
}

const char* PushableReader::partFileName(int part) {
    const Part* found = findPart(part);
    return found ? found->file.c_str() : nullptr;
}

long PushableReader::partSampleCount(int part) {
    return saturate<long>(partDuration(part) * samplingRate());
}

double PushableReader::partDuration(int part) {
    const Part* found = findPart(part);
    return found ? found->seconds : 0.0;
}

bool PushableReader::openFile() {
    if (!InterleavedReader::openFile())
        return false;
    if (!m_pending)
        report(OpenFinding::Severity::note,
               "its samples are pushed by the host; none are yet, and they read as zeros");
    return true;
}

int PushableReader::getSampleChunk(long, short* buffer) {
    if (!m_pending)
        return 0;
    const int samples = chunkPts();
    const auto room = saturate<std::size_t>(std::int64_t{2} * channelCount() * samples);
    const std::size_t bytes = std::min(m_pendingBytes, room);
    auto* out = static_cast<std::byte*>(static_cast<void*>(buffer));
    std::memcpy(out, std::exchange(m_pending, nullptr), bytes);
    std::memset(out + bytes, 0, room - bytes);
    return samples;
}

int PushableReader::_minReadPts() { return getPagePts(); }

} // namespace kvsig
