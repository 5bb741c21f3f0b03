#pragma once

#include "support/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kvsig::test {

/// Builds a continuous Neuroscan recording: NeuroscanFile().channels(2).frames(100).code(40, 7).
/// Sample i of channel c is rampCount(c, i), or smooth(c, i) when `smoothSignal` was asked for.
class NeuroscanFile {
  public:
    struct Channel {
        std::string label;
        int baseline = 0;
        float sensitivity = 17.1875F, calibration = 1.0F;
    };

    NeuroscanFile& channels(int count) {
        for (int i = 0; i < count; ++i)
            channel({.label = "E" + std::to_string(i + 1)});
        return *this;
    }
    NeuroscanFile& channel(Channel facts) { return m_channels.push_back(std::move(facts)), *this; }
    NeuroscanFile& frames(long count) { return m_frames = count, *this; }
    NeuroscanFile& sampleBytes(int bytes) { return m_bytes = bytes, *this; }
    /// Stored in blocks of this many samples of a channel.
    NeuroscanFile& blocks(int samples) { return m_block = samples, *this; }
    NeuroscanFile& channelOffset(int bytes) { return m_channelOffset = bytes, *this; }
    /// What the header says; the true number by default.
    NeuroscanFile& count(long samples) { return m_count = samples, *this; }
    /// The trailer of newer files, which tells the width.
    NeuroscanFile& trailer(int mark) { return m_trailer = mark, *this; }
    NeuroscanFile& date(const std::string& text) { return m_date = text, *this; }
    NeuroscanFile& tableType(int type) { return m_tableType = type, *this; }
    NeuroscanFile& smoothSignal() { return m_smooth = true, *this; }
    NeuroscanFile& event(long sample, int code, int key, int keypadAndStatus) {
        return m_events.push_back({sample, code, key, keypadAndStatus}), *this;
    }

    [[nodiscard]] std::int32_t value(int channel, long index) const;
    [[nodiscard]] std::size_t dataOffset() const { return 900 + 75 * m_channels.size(); }
    [[nodiscard]] std::size_t tableOffset() const;
    [[nodiscard]] std::string bytes() const { return made().str(); }
    /// Offsets at which fields of the header begin, up to the first sample.
    [[nodiscard]] std::vector<std::size_t> boundaries() const {
        return made().boundaries(dataOffset());
    }

  private:
    [[nodiscard]] Bytes made() const;

    struct Event {
        long sample;
        int code, key, keypadAndStatus;
    };

    std::vector<Channel> m_channels;
    long m_frames = 10, m_count = -1;
    int m_bytes = 2, m_block = 0, m_channelOffset = 0, m_trailer = -1, m_tableType = 1;
    bool m_smooth = false;
    std::string m_date = "05/23/04";
    std::vector<Event> m_events;
};

} // namespace kvsig::test
