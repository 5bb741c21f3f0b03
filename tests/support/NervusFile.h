#pragma once

#include "support/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kvsig::test {

/// Days since 1899-12-30.
double oleDays(int year, int month, int day, double secondOfDay);

/// Builds a Nervus container: NervusFile().channel({"Fp1"}).segment(oleDays(...), 2.5).make().
/// Own sample i of channel c, counted through all segments, is rampCount(c, i). Samples stand in
/// pieces of a second, those of all channels behind one another.
class NervusFile {
  public:
    struct Channel {
        std::string label = "Fp1", reference = "REF";
        double rate = 100.0, resolution = 0.25, offset = 0.0;
    };
    struct Made {
        std::string bytes;
        std::map<std::string, std::size_t> places; ///< of sections by tag, and "index", "data"
        std::vector<std::size_t> boundaries;       ///< of fields, up to the first sample
    };
    static constexpr const char* series = "{A271CCCB-515D-4590-B6A1-DC170C8D6EE2}";
    static constexpr const char* patient = "{D0B3FD0B-49D9-4BF0-8929-296DE5A55910}";
    static constexpr const char* annotation = "{A5A95612-A7F8-11CF-831A-0800091B5BDA}";
    static constexpr const char* seizure = "{A5A95646-A7F8-11CF-831A-0800091B5BDA}";

    NervusFile& channel(Channel facts) { return m_channels.push_back(facts), *this; }
    NervusFile& segment(double days, double seconds);
    /// A further packet of channels: the first of them has this rate.
    NervusFile& packet(double rate) { return m_packets.push_back(rate), *this; }
    /// No change lists the channels.
    NervusFile& unlisted() { return m_listed = false, *this; }
    NervusFile& entriesPerBlock(std::size_t count) { return m_perBlock = count, *this; }
    NervusFile& text(int id, const std::string& value) {
        return m_texts.emplace_back(id, value), *this;
    }
    NervusFile& value(int id, double number) { return m_values.emplace_back(id, number), *this; }
    NervusFile& event(const std::string& type, double days, double extra, double duration,
                      const std::string& text, const std::string& label = {});
    /// The pieces of a channel end after so many samples.
    NervusFile& held(std::size_t channel, std::int64_t samples) {
        return m_held[channel] = samples, *this;
    }

    [[nodiscard]] Made make() const;

  private:
    [[nodiscard]] std::string seriesPacket(double firstRate) const;
    [[nodiscard]] std::string patientBytes() const;

    std::vector<Channel> m_channels;
    std::vector<std::pair<double, double>> m_segments;
    std::vector<double> m_packets;
    std::vector<std::pair<int, std::string>> m_texts;
    std::vector<std::pair<int, double>> m_values;
    std::map<std::size_t, std::int64_t> m_held;
    std::string m_events;
    std::size_t m_perBlock = 7;
    bool m_listed = true;
};

} // namespace kvsig::test
