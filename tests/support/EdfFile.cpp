#include "support/EdfFile.h"

#include "support/Bytes.h"

#include <fstream>

namespace kvsig::test {
namespace {

std::string padded(std::string text, std::size_t width) {
    text.resize(width, ' ');
    return text;
}

} // namespace

std::int32_t EdfFile::sample(int signal, std::int64_t index) const {
    return m_samples ? m_samples(signal, index) : rampCount(signal, index);
}

std::size_t EdfFile::fieldOffset(int before, int width, int signal) const {
    return 256 + static_cast<std::size_t>(before) * m_signals.size() +
           static_cast<std::size_t>(width) * static_cast<std::size_t>(signal);
}

std::string EdfFile::bytes() const {
    std::string out = m_bdf ? "\xFF"
                              "BIOSEMI"
                            : padded("0", 8);
    out += padded(m_patient, 80) + padded(m_recording, 80) + padded(m_date, 8) + padded(m_time, 8);
    out += padded(std::to_string(headerLength()), 8) + padded(m_reserved, 44);
    out += padded(std::to_string(m_records), 8) + padded(m_duration, 8);
    out += padded(std::to_string(m_signals.size()), 4);

    const auto column = [&](std::size_t width, auto text) {
        for (const Signal& signal : m_signals)
            out += padded(text(signal), width);
    };
    column(16, [](const Signal& s) { return s.label; });
    column(80, [](const Signal&) { return std::string("AgAgCl electrode"); });
    column(8, [](const Signal& s) { return s.units; });
    column(8, [](const Signal& s) { return s.physicalLow; });
    column(8, [](const Signal& s) { return s.physicalHigh; });
    column(8, [](const Signal& s) { return s.digitalLow; });
    column(8, [](const Signal& s) { return s.digitalHigh; });
    column(80, [](const Signal&) { return std::string("HP:0.1Hz"); });
    column(8, [](const Signal& s) { return std::to_string(s.samplesPerRecord); });
    column(32, [](const Signal&) { return std::string(); });

    const int width = m_bdf ? 3 : 2;
    for (int record = 0; record < m_records; ++record)
        for (std::size_t s = 0; s < m_signals.size(); ++s) {
            const auto bytesOfSignal = static_cast<std::size_t>(m_signals[s].samplesPerRecord) *
                                       static_cast<std::size_t>(width);
            if (!m_onsets.empty() && m_signals[s].label.ends_with(" Annotations")) {
                const std::string& onset = m_onsets[static_cast<std::size_t>(record)];
                std::string text = onset.empty() ? "" : onset + "\x14\x14";
                text.resize(bytesOfSignal, '\0');
                out += text;
                continue;
            }
            for (std::int64_t k = 0; k < m_signals[s].samplesPerRecord; ++k) {
                const std::int64_t index = std::int64_t{record} * m_signals[s].samplesPerRecord + k;
                const auto value = static_cast<std::uint32_t>(sample(static_cast<int>(s), index));
                for (int byte = 0; byte < width; ++byte)
                    out.push_back(static_cast<char>(value >> (8 * byte) & 0xFFU));
            }
        }
    out += m_tail;
    for (const auto& [offset, by] : m_patches)
        out.replace(offset, by.size(), by);
    if (m_length < out.size())
        out.resize(m_length);
    return out;
}

const std::string& EdfFile::writeTo(const std::string& path) const {
    const std::string content = bytes();
    std::ofstream(path, std::ios::binary)
        .write(content.data(), static_cast<std::streamsize>(content.size()));
    return path;
}

} // namespace kvsig::test
