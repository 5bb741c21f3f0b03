#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kvsig::bench {

/// The limit that readers are measured against: an EDF or BDF file read by straight loops that know
/// nothing but where the samples stand. Whole records are read, converted to the library's values
/// by one multiplication and one addition, and written channel by channel at the fastest channel's
/// rate, slower ones repeated.
class StraightFile {
  public:
    /// Opens the file and parses what the loops need. Throws std::runtime_error.
    explicit StraightFile(const std::string& path);
    ~StraightFile();
    StraightFile(const StraightFile&) = delete;
    StraightFile& operator=(const StraightFile&) = delete;

    [[nodiscard]] std::size_t channels() const { return m_channels.size(); }
    [[nodiscard]] std::int64_t records() const { return m_records; }
    [[nodiscard]] double recordSeconds() const { return m_recordSeconds; }
    [[nodiscard]] double duration() const {
        return static_cast<double>(m_records) * m_recordSeconds;
    }
    /// Records that make up `seconds`.
    [[nodiscard]] std::int64_t recordsIn(double seconds) const;
    [[nodiscard]] std::int64_t pointsPerRecord() const { return m_points; }
    [[nodiscard]] std::int64_t dataOffset() const { return m_dataOffset; }
    /// The value of the raw count 0.
    [[nodiscard]] float zeroValue(std::size_t channel) const { return m_channels[channel].offset; }

    /// Records first..first + count - 1 of all channels; `out[c]` receives
    /// count * pointsPerRecord() floats, unless it is null.
    void read(std::int64_t first, std::int64_t count, float* const* out);
    /// The same of one channel, whose bytes alone are read.
    void readChannel(std::size_t channel, std::int64_t first, std::int64_t count, float* out);

    /// Plain reading: the same bytes, looked at by nobody.
    void fetch(std::int64_t first, std::int64_t count);
    void fetchChannel(std::size_t channel, std::int64_t first, std::int64_t count);

  private:
    struct Channel {
        std::int64_t position; ///< bytes from the record's start
        std::int64_t samples;
        float scale;
        float offset;
    };
    using Bytes = std::vector<unsigned char>;

    void convert(const unsigned char* bytes, const Channel& channel, float* out);
    void stretch(std::int64_t samples, float* out) const;
    template <typename Use>
    void eachBlock(std::int64_t first, std::int64_t count, Use use);

    int m_handle = -1;
    int m_sampleBytes = 2;
    std::int64_t m_dataOffset = 0;
    std::int64_t m_recordBytes = 0;
    std::int64_t m_records = 0;
    std::int64_t m_points = 0;
    double m_recordSeconds = 0.0;
    std::vector<Channel> m_channels;
    Bytes m_buffer;
    std::vector<float> m_native;
};

} // namespace kvsig::bench
