#pragma once

#include "support/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kvsig::test {

/// Builds the sample file (.EEG) of a Nihon Kohden recording:
/// NihonKohdenFile().codes({0, 42}).block("20190403160016", 400). Word i of channel c, counted
/// through all blocks, is rampCount(c, i) above the zero of 0x8000.
class NihonKohdenFile {
  public:
    static constexpr std::size_t firstBlock = 0x17FE;

    explicit NihonKohdenFile(std::string signature = "EEG-1100C V01.00")
        : m_signature(std::move(signature)) {}

    NihonKohdenFile& rate(int hertz) { return m_rate = hertz, *this; }
    NihonKohdenFile& codes(std::vector<int> list) { return m_codes = std::move(list), *this; }
    /// "YYYYMMDDhhmmss" in the header; else that of the first block.
    NihonKohdenFile& start(const std::string& text) { return m_start = text, *this; }
    /// A waveform block; `tenths` stands in its head in place of the true length.
    NihonKohdenFile& block(const std::string& time, std::int64_t frames, std::int64_t tenths = -1);
    /// The blocks from here on are listed by another control block.
    NihonKohdenFile& control() { return m_controls.emplace_back(), *this; }

    [[nodiscard]] std::size_t blockOffset(std::size_t index) const;
    [[nodiscard]] std::size_t headBytes() const { return 0x27 + 10 * m_codes.size(); }
    [[nodiscard]] std::string bytes() const { return made().str(); }
    /// Offsets at which the fields of the header begin, up to the first sample.
    [[nodiscard]] std::vector<std::size_t> boundaries() const {
        return made().boundaries(firstBlock + headBytes());
    }

  private:
    [[nodiscard]] Bytes made() const;

    struct Block {
        std::string time;
        std::int64_t frames;
        std::int64_t tenths;
    };

    std::string m_signature, m_start;
    int m_rate = 200;
    std::vector<int> m_codes = {0, 1, 42, 76};
    std::vector<Block> m_blocks;
    std::vector<std::vector<std::size_t>> m_controls{1}; ///< indices of blocks
};

/// Builds the patient page (.PNT) beside it.
std::string nihonKohdenPage(const std::string& stem = "MB0400FU",
                            const std::string& exam = "2019/04/03");

/// Builds the event file (.LOG) beside it.
class NihonKohdenLog {
  public:
    /// `fraction`: six digits, or empty.
    NihonKohdenLog& entry(const std::string& text, const std::string& elapsed,
                          const std::string& clock, const std::string& fraction = {}) {
        return m_blocks.back().push_back({text, elapsed, clock, fraction}), *this;
    }
    /// The entries from here on are in another log block.
    NihonKohdenLog& block() { return m_blocks.emplace_back(), *this; }
    [[nodiscard]] std::string bytes() const;

  private:
    struct Entry {
        std::string text, elapsed, clock, fraction;
    };
    std::vector<std::vector<Entry>> m_blocks{1};
};

} // namespace kvsig::test
