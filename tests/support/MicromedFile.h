#pragma once

#include "support/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kvsig::test {

/// Builds a Micromed recording: MicromedFile().channel({"Fp1"}).frames(100).note(7, "eyes closed").
/// What is stored of sample i of channel c is stored(c, i).
class MicromedFile {
  public:
    struct Channel {
        std::string positive, negative = "G2";
        int low = 0, high = 65535, ground = 32768, physicalLow = -3200, physicalHigh = 3200;
        int unit = 0, coefficient = 1;
    };

    MicromedFile& channel(Channel facts) { return m_channels.push_back(std::move(facts)), *this; }
    MicromedFile& rate(int hertz) { return m_rate = hertz, *this; }
    MicromedFile& sampleBytes(int bytes) { return m_bytes = bytes, *this; }
    MicromedFile& frames(long count) { return m_frames = count, *this; }
    MicromedFile& note(std::uint32_t sample, const std::string& text) {
        return m_notes.add(sample).put(m_notes.size(), text, 40, '\1'), *this;
    }
    MicromedFile& flag(std::uint32_t begin, std::uint32_t end) {
        return m_flags.add(begin).add(end), *this;
    }
    MicromedFile& event(char list, std::uint32_t code, std::uint32_t begin, std::uint32_t end) {
        return (list == 'A' ? m_eventsA : m_eventsB).add(code).add(begin).add(end), *this;
    }
    MicromedFile& trigger(std::uint32_t sample, std::uint16_t value) {
        return m_triggers.add(sample).add(value), *this;
    }
    MicromedFile& piece(std::uint32_t original, std::uint32_t own) {
        return m_pieces.add(original).add(own), *this;
    }

    [[nodiscard]] std::int64_t stored(int channel, long index) const;
    /// Where a zone begins; the zones have places of their own, whatever is in them.
    [[nodiscard]] static std::size_t zoneStart(const std::string& name);
    [[nodiscard]] std::string bytes() const { return made().str(); }
    [[nodiscard]] static std::size_t dataOffset() { return zoneStart(""); }
    /// Offsets at which fields of the header and of its zones begin, up to the first sample.
    [[nodiscard]] std::vector<std::size_t> boundaries() const {
        return made().boundaries(dataOffset());
    }

  private:
    [[nodiscard]] Bytes made() const;

    std::vector<Channel> m_channels;
    int m_rate = 256, m_bytes = 2;
    long m_frames = 10;
    Bytes m_notes, m_flags, m_eventsA, m_eventsB, m_triggers, m_pieces;
};

} // namespace kvsig::test
