#include "Reading.h"
#include "StraightFile.h"

namespace kvsig::bench {
namespace {

class StraightReading final : public Reading {
  public:
    explicit StraightReading(const std::string& path)
        : m_file(path), m_buffers(m_file.channels()), m_out(m_file.channels()) {}
    std::size_t channels() const override { return m_file.channels(); }
    double duration() const override { return m_file.duration(); }
    void window(double start, double seconds) override {
        const auto count = m_file.recordsIn(seconds);
        for (std::size_t c = 0; c < m_buffers.size(); ++c)
            m_out[c] = room(c, count);
        m_file.read(m_file.recordsIn(start), count, m_out.data());
    }
    void channelWindow(std::size_t channel, double start, double seconds) override {
        const auto count = m_file.recordsIn(seconds);
        m_file.readChannel(channel, m_file.recordsIn(start), count, room(channel, count));
    }
    std::size_t callerBytes() const override {
        std::size_t bytes = 0;
        for (const auto& buffer : m_buffers)
            bytes += buffer.size() * sizeof(float);
        return bytes;
    }
    std::span<const float> floats(std::size_t channel) const override { return m_buffers[channel]; }

  private:
    float* room(std::size_t channel, std::int64_t count) {
        m_buffers[channel].resize(static_cast<std::size_t>(count * m_file.pointsPerRecord()));
        return m_buffers[channel].data();
    }

    StraightFile m_file;
    std::vector<std::vector<float>> m_buffers;
    std::vector<float*> m_out;
};

// Reads the bytes and leaves it at that.
class PlainReading final : public Reading {
  public:
    explicit PlainReading(const std::string& path) : m_file(path) {}
    std::size_t channels() const override { return m_file.channels(); }
    double duration() const override { return m_file.duration(); }
    void window(double start, double seconds) override {
        m_file.fetch(m_file.recordsIn(start), m_file.recordsIn(seconds));
    }
    void channelWindow(std::size_t channel, double start, double seconds) override {
        m_file.fetchChannel(channel, m_file.recordsIn(start), m_file.recordsIn(seconds));
    }

  private:
    StraightFile m_file;
};

} // namespace

std::unique_ptr<Reading> openStraight(const std::string& path) {
    return std::make_unique<StraightReading>(path);
}

std::unique_ptr<Reading> openPlain(const std::string& path) {
    return std::make_unique<PlainReading>(path);
}

} // namespace kvsig::bench
