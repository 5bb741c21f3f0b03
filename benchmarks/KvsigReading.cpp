#include "Reading.h"
#include "kvsig/kvsig.h"

#include <cmath>
#include <stdexcept>

namespace kvsig::bench {
namespace {

class KvsigReading final : public Reading {
  public:
    explicit KvsigReading(const std::string& path) {
        std::string error;
        m_reader = openReader(path.c_str(), 0, &error);
        if (!m_reader)
            throw std::runtime_error(error);
        m_buffers.resize(channels());
    }
    std::size_t channels() const override {
        return static_cast<std::size_t>(m_reader->channelCount());
    }
    double duration() const override {
        auto& reader = dynamic_cast<DataReader&>(*m_reader);
        return static_cast<double>(reader.storedSampleCount()) / m_reader->samplingRate();
    }
    void window(double start, double seconds) override {
        for (std::size_t c = 0; c < m_buffers.size(); ++c)
            channelWindow(c, start, seconds);
    }
    void channelWindow(std::size_t channel, double start, double seconds) override {
        const double rate = m_reader->samplingRate();
        const long first = std::lround(start * rate);
        const long count = std::lround(seconds * rate);
        m_buffers[channel].resize(static_cast<std::size_t>(count));
        m_reader->getData(static_cast<int>(channel), first, first + count - 1,
                          m_buffers[channel].data(), 1.0, 0);
    }
    std::size_t callerBytes() const override {
        std::size_t bytes = 0;
        for (const auto& buffer : m_buffers)
            bytes += buffer.size() * sizeof(float);
        return bytes;
    }
    std::span<const float> floats(std::size_t channel) const override { return m_buffers[channel]; }

  private:
    ReaderPtr m_reader;
    std::vector<std::vector<float>> m_buffers;
};

} // namespace

std::unique_ptr<Reading> openKvsig(const std::string& path) {
    return std::make_unique<KvsigReading>(path);
}

} // namespace kvsig::bench
