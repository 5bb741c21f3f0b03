#include "StraightFile.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace kvsig::bench {
namespace {

constexpr std::int64_t blockBytes = 1 << 18; // stays in the second-level cache
constexpr std::int64_t spareBytes = 1;       // samples of three bytes are loaded as four

void readFully(int handle, void* dest, std::int64_t bytes, std::int64_t offset) {
    if (::pread(handle, dest, static_cast<std::size_t>(bytes), offset) != bytes)
        throw std::runtime_error("short read");
}

double number(const char* field, int width) {
    char text[16] = "";
    std::memcpy(text, field, static_cast<std::size_t>(width));
    return std::atof(text);
}

bool isMicrovolts(const char* units) {
    const std::string text(units, 8);
    return text.find("uV") != std::string::npos || text.find("\xB5V") != std::string::npos;
}

} // namespace

StraightFile::StraightFile(const std::string& path) : m_handle(::open(path.c_str(), O_RDONLY)) {
    if (m_handle < 0)
        throw std::runtime_error(path + ": cannot be opened");
    char fixedPart[256];
    readFully(m_handle, fixedPart, 256, 0);
    m_sampleBytes = static_cast<unsigned char>(fixedPart[0]) == 0xFF ? 3 : 2;
    m_dataOffset = static_cast<std::int64_t>(number(fixedPart + 184, 8));
    m_recordSeconds = number(fixedPart + 244, 8);
    const auto signals = static_cast<std::int64_t>(number(fixedPart + 252, 4));
    std::vector<char> header(static_cast<std::size_t>(m_dataOffset));
    readFully(m_handle, header.data(), m_dataOffset, 0);
    const char* fields = header.data() + 256;
    m_channels.reserve(static_cast<std::size_t>(signals));
    for (std::int64_t i = 0; i < signals; ++i) {
        const auto field = [&](int before) { return fields + before * signals + 8 * i; };
        const auto samples = static_cast<std::int64_t>(number(field(216), 8));
        const double physicalLow = number(field(104), 8);
        const double digitalLow = number(field(120), 8);
        const double calibration =
            (number(field(112), 8) - physicalLow) / (number(field(128), 8) - digitalLow);
        Channel channel{m_recordBytes, samples, static_cast<float>(calibration), 0.0F};
        // The library's value is then the physical one, times the calibration once more.
        if (!isMicrovolts(field(96))) {
            channel.scale = static_cast<float>(calibration * calibration);
            channel.offset =
                static_cast<float>((physicalLow - digitalLow * calibration) * calibration);
        }
        if (std::strncmp(fields + 16 * i, "EDF Annotations", 15) != 0)
            m_channels.push_back(channel);
        m_recordBytes += samples * m_sampleBytes;
    }
    struct stat facts = {};
    ::fstat(m_handle, &facts);
    m_records = (facts.st_size - m_dataOffset) / m_recordBytes;
    for (const Channel& channel : m_channels)
        m_points = std::max(m_points, channel.samples);
}

StraightFile::~StraightFile() { ::close(m_handle); }

std::int64_t StraightFile::recordsIn(double seconds) const {
    return std::llround(seconds / m_recordSeconds);
}

void StraightFile::convert(const unsigned char* bytes, const Channel& channel, float* out) {
    const std::int64_t count = channel.samples;
    m_native.resize(static_cast<std::size_t>(m_points));
    float* const to = count == m_points ? out : m_native.data();
    const float scale = channel.scale;
    const float offset = channel.offset;
    if (m_sampleBytes == 2) {
        for (std::int64_t i = 0; i < count; ++i) {
            std::int16_t value;
            std::memcpy(&value, bytes + 2 * i, 2);
            to[i] = static_cast<float>(value) * scale + offset;
        }
    } else {
        for (std::int64_t i = 0; i < count; ++i) {
            const unsigned char* b = bytes + 3 * i;
            const auto bits = static_cast<std::uint32_t>(b[0]) << 8 |
                              static_cast<std::uint32_t>(b[1]) << 16 |
                              static_cast<std::uint32_t>(b[2]) << 24;
            to[i] = static_cast<float>(static_cast<std::int32_t>(bits) >> 8) * scale + offset;
        }
    }
    if (count != m_points)
        stretch(count, out);
}

void StraightFile::stretch(std::int64_t samples, float* out) const {
    const float* const native = m_native.data();
    if (m_points == 2 * samples) {
        for (std::int64_t i = 0; i < samples; ++i)
            out[2 * i] = out[2 * i + 1] = native[i];
    } else if (m_points % samples == 0) {
        const std::int64_t times = m_points / samples;
        for (std::int64_t i = 0; i < samples; ++i)
            std::fill_n(out + i * times, times, native[i]);
    } else {
        for (std::int64_t i = 0; i < m_points; ++i)
            out[i] = native[i * samples / m_points];
    }
}

template <typename Use>
void StraightFile::eachBlock(std::int64_t first, std::int64_t count, Use use) {
    m_buffer.resize(static_cast<std::size_t>(std::max(blockBytes, m_recordBytes)));
    const std::int64_t perBlock = std::max<std::int64_t>(blockBytes / m_recordBytes, 1);
    for (std::int64_t done = 0; done < count; done += perBlock) {
        const std::int64_t records = std::min(perBlock, count - done);
        readFully(m_handle, m_buffer.data(), records * m_recordBytes,
                  m_dataOffset + (first + done) * m_recordBytes);
        use(done, records);
    }
}

void StraightFile::read(std::int64_t first, std::int64_t count, float* const* out) {
    eachBlock(first, count, [&](std::int64_t done, std::int64_t records) {
        for (std::size_t c = 0; c < m_channels.size(); ++c)
            for (std::int64_t r = 0; out[c] && r < records; ++r)
                convert(m_buffer.data() + r * m_recordBytes + m_channels[c].position, m_channels[c],
                        out[c] + (done + r) * m_points);
    });
}

void StraightFile::fetch(std::int64_t first, std::int64_t count) {
    eachBlock(first, count, [](std::int64_t, std::int64_t) {});
}

void StraightFile::readChannel(std::size_t channel, std::int64_t first, std::int64_t count,
                               float* out) {
    const Channel& facts = m_channels[channel];
    for (std::int64_t r = 0; r < count; ++r) {
        fetchChannel(channel, first + r, 1);
        convert(m_buffer.data(), facts, out + r * m_points);
    }
}

void StraightFile::fetchChannel(std::size_t channel, std::int64_t first, std::int64_t count) {
    const Channel& facts = m_channels[channel];
    m_buffer.resize(static_cast<std::size_t>(facts.samples * m_sampleBytes));
    for (std::int64_t r = first; r < first + count; ++r)
        readFully(m_handle, m_buffer.data(), facts.samples * m_sampleBytes,
                  m_dataOffset + r * m_recordBytes + facts.position);
}

} // namespace kvsig::bench
