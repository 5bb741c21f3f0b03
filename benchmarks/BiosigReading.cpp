#include "Reading.h"

#include <biosig.h>
#include <cmath>
#include <stdexcept>

namespace kvsig::bench {
namespace {

class BiosigReading final : public Reading {
  public:
    explicit BiosigReading(const std::string& path) : m_header(sopen(path.c_str(), "r", nullptr)) {
        if (!m_header || serror2(m_header) != 0)
            throw std::runtime_error(path + ": libbiosig does not open it");
        m_header->FLAG.OVERFLOWDETECTION = 0;
        m_header->FLAG.UCAL = 0;
    }
    ~BiosigReading() override { destructHDR(m_header); }
    BiosigReading(const BiosigReading&) = delete;
    BiosigReading& operator=(const BiosigReading&) = delete;

    std::size_t channels() const override { return m_header->NS; }
    double duration() const override {
        return static_cast<double>(m_header->NRec) * blockSeconds();
    }
    void window(double start, double seconds) override {
        const auto first = static_cast<std::size_t>(std::llround(start / blockSeconds()));
        const auto count = static_cast<std::size_t>(std::llround(seconds / blockSeconds()));
        // sread() takes its raw bytes to begin there and does not set it: it would read past them.
        m_header->AS.first = first;
        if (sread(nullptr, first, count, m_header) != count)
            throw std::runtime_error("libbiosig: short read");
    }
    void channelWindow(std::size_t channel, double start, double seconds) override {
        if (channel != m_only || !m_selected) {
            for (std::size_t c = 0; c < channels(); ++c)
                m_header->CHANNEL[c].OnOff = c == channel ? 1 : 0;
            m_only = channel;
            m_selected = true;
        }
        window(start, seconds);
    }

  private:
    [[nodiscard]] double blockSeconds() const { return m_header->SPR / m_header->SampleRate; }

    HDRTYPE* m_header;
    std::size_t m_only = 0;
    bool m_selected = false;
};

} // namespace

std::unique_ptr<Reading> openBiosig(const std::string& path) {
    return std::make_unique<BiosigReading>(path);
}

} // namespace kvsig::bench
