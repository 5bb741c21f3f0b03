#pragma once

#include "support/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kvsig::test {

/// Builds a Blackrock recording: BlackrockFile("NEURALCD", 2, 3).channels(5).block(114000, 100).
/// Sample i of channel c, counted through all blocks, is rampCount(c, i).
class BlackrockFile {
  public:
    struct Channel {
        std::string name, units = "uV";
        int digitalLow = -32764, digitalHigh = 32764, analogueLow = -8191, analogueHigh = 8191;
    };

    BlackrockFile(std::string id, int major, int minor)
        : m_id(std::move(id)), m_major(major), m_minor(minor) {}

    BlackrockFile& channels(int count) {
        for (int i = 0; i < count; ++i)
            channel({.name = "RAMY" + std::to_string(i + 1)});
        return *this;
    }
    BlackrockFile& channel(Channel facts) { return m_channels.push_back(facts), *this; }
    BlackrockFile& period(std::uint32_t value) { return m_period = value, *this; }
    BlackrockFile& ticks(std::uint32_t value) { return m_ticks = value, *this; }
    /// A data block; `said` stands in its head in place of the true count.
    BlackrockFile& block(std::uint64_t stamp, std::int64_t frames, std::int64_t said = -1) {
        return m_blocks.push_back({stamp, frames, said < 0 ? frames : said}), *this;
    }
    BlackrockFile& append(const std::string& bytes) { return m_tail += bytes, *this; }

    [[nodiscard]] std::string bytes() const { return made().str(); }
    /// Offsets at which the fields of the header begin, up to the first sample.
    [[nodiscard]] std::vector<std::size_t> boundaries() const {
        return made().boundaries(headerBytes() + (bare() ? 0 : wide() ? 13 : 9));
    }

  private:
    [[nodiscard]] Bytes made() const;
    [[nodiscard]] std::size_t headerBytes() const {
        return bare() ? 32 + 4 * m_channels.size() : 314 + 66 * m_channels.size();
    }
    struct Block {
        std::uint64_t stamp;
        std::int64_t frames;
        std::int64_t said;
    };
    [[nodiscard]] bool bare() const { return m_id == "NEURALSG"; }
    [[nodiscard]] bool wide() const { return m_id == "BRSMPGRP"; }

    std::string m_id;
    int m_major, m_minor;
    std::vector<Channel> m_channels;
    std::uint32_t m_period = 15, m_ticks = 30000;
    std::vector<Block> m_blocks;
    std::string m_tail;
};

/// Builds the event file beside it.
class BlackrockEventFile {
  public:
    explicit BlackrockEventFile(bool wide = false) : m_wide(wide) {}

    BlackrockEventFile& ticks(std::uint32_t value) { return m_ticks = value, *this; }
    BlackrockEventFile& hour(int value) { return m_hour = value, *this; }
    BlackrockEventFile& scale(std::uint16_t electrode, std::uint16_t nanovolts) {
        m_extensions.emplace_back().put(0, "NEUEVWAV", 8).put(8, electrode).put(12, nanovolts);
        return *this;
    }
    BlackrockEventFile& label(std::uint16_t electrode, const std::string& text) {
        m_extensions.emplace_back().put(0, "NEUEVLBL", 8).put(8, electrode).put(10, text, 16);
        return *this;
    }
    BlackrockEventFile& digital(std::uint64_t stamp, std::uint16_t value) {
        return packet(stamp, 0).add(u8(1) + u8(0)).add(value), *this;
    }
    BlackrockEventFile& spike(std::uint64_t stamp, std::uint16_t electrode) {
        return packet(stamp, electrode).add(u8(2) + u8(0) + u16(77)), *this;
    }
    /// `charset` 1: the text is UTF-16 already.
    BlackrockEventFile& comment(std::uint64_t stamp, const std::string& text,
                                std::uint8_t charset = 0) {
        return packet(stamp, 0xFFFF).add(charset).add(u8(0) + u32(0xFF) + text), *this;
    }

    [[nodiscard]] std::string bytes() const;

  private:
    static constexpr std::size_t packetBytes = 48;
    Bytes& packet(std::uint64_t stamp, std::uint16_t id);

    bool m_wide;
    std::uint32_t m_ticks = 30000;
    int m_hour = 14;
    std::vector<Bytes> m_extensions, m_packets;
};

} // namespace kvsig::test
