#include "support/EdfFile.h"

#include <fstream>

namespace kvsig::test {
namespace {

std::string padded(std::string text, std::size_t width) {
    text.resize(width, ' ');
    return text;
}

} // namespace

EdfFile& EdfFile::bdf() {
    m_bdf = true;
    if (m_reserved.empty())
        m_reserved = "24BIT";
    return *this;
}

EdfFile& EdfFile::signal(const std::string& label, int samplesPerRecord) {
    Signal added;
    added.label = label;
    added.samplesPerRecord = samplesPerRecord;
    m_signals.push_back(added);
    return *this;
}

EdfFile& EdfFile::units(const std::string& text) {
    m_signals.back().units = text;
    return *this;
}

EdfFile& EdfFile::physical(const std::string& low, const std::string& high) {
    m_signals.back().physicalLow = low;
    m_signals.back().physicalHigh = high;
    return *this;
}

EdfFile& EdfFile::digital(const std::string& low, const std::string& high) {
    m_signals.back().digitalLow = low;
    m_signals.back().digitalHigh = high;
    return *this;
}

EdfFile& EdfFile::samples(Samples values) {
    m_samples = std::move(values);
    return *this;
}

EdfFile& EdfFile::records(int count) {
    m_records = count;
    return *this;
}

EdfFile& EdfFile::onsets(std::vector<std::string> texts) {
    m_onsets = std::move(texts);
    return records(static_cast<int>(m_onsets.size()));
}

EdfFile& EdfFile::duration(const std::string& seconds) {
    m_duration = seconds;
    return *this;
}

EdfFile& EdfFile::reserved(const std::string& text) {
    m_reserved = text;
    return *this;
}

EdfFile& EdfFile::patient(const std::string& text) {
    m_patient = text;
    return *this;
}

EdfFile& EdfFile::recording(const std::string& text) {
    m_recording = text;
    return *this;
}

EdfFile& EdfFile::start(const std::string& date, const std::string& time) {
    m_date = date;
    m_time = time;
    return *this;
}

EdfFile& EdfFile::poke(std::size_t offset, const std::string& bytes) {
    m_patches.push_back({offset, bytes});
    return *this;
}

EdfFile& EdfFile::append(const std::string& bytes) {
    m_tail += bytes;
    return *this;
}

EdfFile& EdfFile::truncate(std::size_t length) {
    m_length = length;
    return *this;
}

std::int32_t EdfFile::sample(int signal, std::int64_t index) const {
    if (m_samples)
        return m_samples(signal, index);
    // Distinct for every signal and sign-changing, so that a swap or a shift shows.
    const auto value = static_cast<std::int32_t>((index * 7 + signal * 1013) % 30011);
    return (index + signal) % 2 == 0 ? value : -value;
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
    for (const Patch& patch : m_patches)
        out.replace(patch.offset, patch.bytes.size(), patch.bytes);
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
