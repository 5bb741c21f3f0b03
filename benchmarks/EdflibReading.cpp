#include "Reading.h"

#include <cmath>
#include <edflib.h>
#include <stdexcept>

namespace kvsig::bench {
namespace {

class EdflibReading final : public Reading {
  public:
    explicit EdflibReading(const std::string& path) {
        if (edfopen_file_readonly(path.c_str(), &m_header, EDFLIB_DO_NOT_READ_ANNOTATIONS) != 0)
            throw std::runtime_error(path + ": EDFlib does not open it");
        m_buffers.resize(channels());
    }
    ~EdflibReading() override { edfclose_file(m_header.handle); }
    EdflibReading(const EdflibReading&) = delete;
    EdflibReading& operator=(const EdflibReading&) = delete;

    std::size_t channels() const override { return static_cast<std::size_t>(m_header.edfsignals); }
    double duration() const override {
        return static_cast<double>(m_header.file_duration) / EDFLIB_TIME_DIMENSION;
    }
    void window(double start, double seconds) override {
        for (std::size_t c = 0; c < m_buffers.size(); ++c)
            channelWindow(c, start, seconds);
    }
    void channelWindow(std::size_t channel, double start, double seconds) override {
        const int signal = static_cast<int>(channel);
        const double rate =
            m_header.signalparam[channel].smp_in_datarecord /
            (static_cast<double>(m_header.datarecord_duration) / EDFLIB_TIME_DIMENSION);
        const int count = static_cast<int>(std::lround(seconds * rate));
        m_buffers[channel].resize(static_cast<std::size_t>(count));
        edfseek(m_header.handle, signal, std::llround(start * rate), EDFSEEK_SET);
        edfread_physical_samples(m_header.handle, signal, count, m_buffers[channel].data());
    }
    std::size_t callerBytes() const override {
        std::size_t bytes = 0;
        for (const auto& buffer : m_buffers)
            bytes += buffer.size() * sizeof(double);
        return bytes;
    }

  private:
    edf_hdr_struct m_header{};
    std::vector<std::vector<double>> m_buffers;
};

} // namespace

std::unique_ptr<Reading> openEdflib(const std::string& path) {
    return std::make_unique<EdflibReading>(path);
}

} // namespace kvsig::bench
