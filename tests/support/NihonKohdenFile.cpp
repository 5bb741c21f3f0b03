#include "support/NihonKohdenFile.h"

namespace kvsig::test {
namespace {

constexpr std::size_t controlOffset = 0x400;
constexpr std::size_t controlBytes = 0x200;

void putSignature(Bytes& bytes, const std::string& signature) {
    bytes.put(0, signature, 16).put(0x81, signature, 16);
}

} // namespace

NihonKohdenFile& NihonKohdenFile::block(const std::string& time, std::int64_t frames,
                                        std::int64_t tenths) {
    m_controls.back().push_back(m_blocks.size());
    m_blocks.push_back({time, frames, tenths < 0 ? frames * 10 / m_rate : tenths});
    return *this;
}

std::size_t NihonKohdenFile::blockOffset(std::size_t index) const {
    std::size_t offset = firstBlock;
    for (std::size_t i = 0; i < index; ++i)
        offset +=
            headBytes() + 2 * (m_codes.size() + 1) * static_cast<std::size_t>(m_blocks[i].frames);
    return offset;
}

Bytes NihonKohdenFile::made() const {
    Bytes out;
    putSignature(out, m_signature);
    out.put(0x20, "MB0400FU.PNT", 16).put(0x40, m_start.empty() ? m_blocks[0].time : m_start, 14);
    out.put(0x4F, "Doe", 32).put(0x91, static_cast<std::uint8_t>(m_controls.size()));
    for (std::size_t i = 0; i < m_controls.size(); ++i) {
        const std::size_t at = controlOffset + i * controlBytes;
        out.put(0x92 + 20 * i, static_cast<std::uint32_t>(at))
            .put(0x96 + 20 * i, "1100C190403", 16);
        out.put(at, std::uint8_t{1}).put(at + 1, "1100C190403", 16);
        out.put(at + 17, static_cast<std::uint8_t>(m_controls[i].size()));
        for (std::size_t j = 0; j < m_controls[i].size(); ++j)
            out.put(at + 18 + 20 * j, static_cast<std::uint32_t>(blockOffset(m_controls[i][j])));
    }
    std::int64_t index = 0;
    for (std::size_t b = 0; b < m_blocks.size(); ++b) {
        const Block& block = m_blocks[b];
        const std::size_t at = blockOffset(b);
        out.put(at, std::uint8_t{1}).put(at + 1, "TIME" + block.time.substr(8) + "000000", 16);
        for (std::size_t i = 0; i < 6; ++i) // binary coded decimals
            out.put(at + 0x14 + i, static_cast<std::uint8_t>(
                                       std::stoi(block.time.substr(2 + 2 * i, 2), nullptr, 16)));
        out.put(at + 0x1A, static_cast<std::uint16_t>(0xC000 + m_rate));
        out.put(at + 0x1C, static_cast<std::uint32_t>(block.tenths));
        out.put(at + 0x26, static_cast<std::uint8_t>(m_codes.size()));
        for (std::size_t k = 0; k < m_codes.size(); ++k)
            out.put(at + 0x27 + 10 * k, static_cast<std::uint8_t>(m_codes[k]));
        out.padTo(at + headBytes());
        for (std::int64_t i = 0; i < block.frames; ++i, ++index) {
            for (std::size_t c = 0; c < m_codes.size(); ++c)
                out.add(static_cast<std::uint16_t>(0x8000 + rampCount(static_cast<int>(c), index)));
            out.add(std::uint16_t{2}); // the mark word
        }
    }
    return out;
}

std::string nihonKohdenPage(const std::string& stem, const std::string& exam) {
    Bytes out;
    putSignature(out, "EEG-1100C V01.00");
    out.put(0x10, stem + ".EEG", 16).put(0x20, stem + ".LOG", 16).put(0x40, "20190403160016", 14);
    out.put(0x604, "P-4711", 12).put(0x610, "EEG-Nr.", 12).put(0x61C, "MB04", 10);
    out.put(0x62E, "Muster, Erika", 22).put(0x64A, "Weibl.", 8).put(0x660, "1964/08/12", 10);
    out.put(0x672, "54Y07", 8).put(0x69C, "Arzt", 8).put(0x6AA, "Dr. Arzt", 20);
    out.put(0xB26, exam, 10);
    return out.padTo(0xC30).str();
}

std::string NihonKohdenLog::bytes() const {
    Bytes out;
    putSignature(out, "EEG-1100C V01.00");
    out.put(0x91, static_cast<std::uint8_t>(m_blocks.size())).padTo(0x500);
    for (const bool sub : {false, true})
        for (std::size_t i = 0; i < m_blocks.size(); ++i) {
            const std::size_t at = out.size();
            out.put(0x92 + 20 * (i + (sub ? 22 : 0)), static_cast<std::uint32_t>(at));
            out.put(at + 1, "EEG-1100C V01.00", 16);
            out.put(at + 0x12, static_cast<std::uint8_t>(m_blocks[i].size())).padTo(at + 0x14);
            for (const Entry& entry : m_blocks[i]) {
                const std::size_t place = out.size();
                const std::string& text = entry.text;
                out.put(place, sub ? text.substr(std::min<std::size_t>(20, text.size())) : text,
                        20);
                if (sub)
                    out.put(place + 24, entry.fraction, 6);
                else
                    out.put(place + 20, entry.elapsed, 6).put(place + 26, entry.clock, 14);
                out.padTo(place + 45);
            }
        }
    return out.str();
}

} // namespace kvsig::test
