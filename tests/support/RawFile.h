#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kvsig::test {

/// Makes raw interleaved recordings and the attribute files that describe them.
class RawFile {
  public:
    /// Data type 0, 4 or 6; of the last a count must fit -128..127.
    RawFile& dataType(int code) { return m_type = code, *this; }
    RawFile& channels(int count) { return m_channels = count, *this; }
    RawFile& frames(long count) { return m_frames = count, *this; }
    RawFile& headerLength(int bytes) { return m_header = bytes, *this; }
    RawFile& rate(std::string hertz) { return m_rate = std::move(hertz), *this; }
    /// Text behind the first section: further sections.
    RawFile& sections(std::string text) { return m_sections = std::move(text), *this; }

    /// Differs from channel to channel and from sample to sample.
    [[nodiscard]] std::int32_t count(int channel, long index) const {
        const int period = m_type == 6 ? 251 : 4001;
        return static_cast<int>((index * 7 + channel * 31L) % period) - period / 2;
    }

    [[nodiscard]] std::string bytes() const {
        std::string bytes(static_cast<std::size_t>(m_header), '#');
        for (long i = 0; i < m_frames; ++i)
            for (int channel = 0; channel < m_channels; ++channel) {
                const auto value = static_cast<std::uint16_t>(count(channel, i));
                const auto low = static_cast<char>(value & 0xFFU);
                const auto high = static_cast<char>(value >> 8U);
                if (m_type == 6)
                    bytes += static_cast<char>(count(channel, i) + 128);
                else
                    bytes.append({m_type == 4 ? high : low, m_type == 4 ? low : high});
            }
        return bytes;
    }

    [[nodiscard]] std::string attributes() const {
        return "[FileInfo]\nFile=stored.raw\nSamplingRate=" + m_rate +
               "\nHeaderLength=" + std::to_string(m_header) +
               "\nCalibration=0.25\nWaveformCount=" + std::to_string(m_channels) +
               "\nDataType=" + std::to_string(m_type) + "\n" + m_sections;
    }

  private:
    int m_type = 0, m_channels = 3, m_header = 16;
    long m_frames = 752;
    std::string m_rate = "32";
    std::string m_sections;
};

} // namespace kvsig::test
