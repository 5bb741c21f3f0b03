#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kvsig::test {

/// Builds an EDF, EDF+ or BDF recording byte by byte, in the order in which one would describe it:
///
///   EdfFile().signal("EEG Fp1-Ref", 256).units("uV").physical(-100, 100).records(3).writeTo(path);
///
/// Setters of signal fields act on the signal added last. Samples are sample(signal, index) by
/// default a distinct ramp for each signal.
class EdfFile {
  public:
    using Samples = std::function<std::int32_t(int signal, std::int64_t index)>;

    EdfFile& bdf() { return m_bdf = true, m_reserved = "24BIT", *this; }
    EdfFile& signal(const std::string& label, int samplesPerRecord) {
        return m_signals.push_back({label, samplesPerRecord}), *this;
    }
    EdfFile& units(const std::string& text) { return m_signals.back().units = text, *this; }
    EdfFile& physical(const std::string& low, const std::string& high) {
        return m_signals.back().physicalLow = low, m_signals.back().physicalHigh = high, *this;
    }
    EdfFile& digital(const std::string& low, const std::string& high) {
        return m_signals.back().digitalLow = low, m_signals.back().digitalHigh = high, *this;
    }
    EdfFile& samples(Samples values) { return m_samples = std::move(values), *this; }
    EdfFile& records(int count) { return m_records = count, *this; }
    /// As many records; their annotation signals begin with these onsets ("+0"), empty for none.
    EdfFile& onsets(std::vector<std::string> texts) {
        return m_onsets = std::move(texts), records(static_cast<int>(m_onsets.size()));
    }
    EdfFile& duration(const std::string& seconds) { return m_duration = seconds, *this; }
    EdfFile& reserved(const std::string& text) { return m_reserved = text, *this; }
    EdfFile& patient(const std::string& text) { return m_patient = text, *this; }
    EdfFile& recording(const std::string& text) { return m_recording = text, *this; }
    EdfFile& start(const std::string& date, const std::string& time) {
        return m_date = date, m_time = time, *this;
    }
    /// Overwrites bytes of the finished file, as often as needed.
    EdfFile& poke(std::size_t offset, const std::string& bytes) {
        return m_patches.emplace_back(offset, bytes), *this;
    }
    EdfFile& append(const std::string& bytes) { return m_tail += bytes, *this; }
    EdfFile& truncate(std::size_t length) { return m_length = length, *this; }

    [[nodiscard]] std::string bytes() const;
    [[nodiscard]] std::size_t headerLength() const { return 256 * (m_signals.size() + 1); }
    /// The digital value that a signal's sample has in the file.
    [[nodiscard]] std::int32_t sample(int signal, std::int64_t index) const;
    /// Offset of a signal's field in the header; `before` as in the format's own table.
    [[nodiscard]] std::size_t fieldOffset(int before, int width, int signal) const;
    /// Writes the file and returns its path.
    const std::string& writeTo(const std::string& path) const;

  private:
    struct Signal {
        std::string label;
        int samplesPerRecord;
        std::string units = "uV";
        std::string physicalLow = "-3276.8", physicalHigh = "3276.7";
        std::string digitalLow = "-32768", digitalHigh = "32767";
    };

    bool m_bdf = false;
    std::vector<Signal> m_signals;
    int m_records = 1;
    std::string m_duration = "1", m_reserved, m_patient = "X", m_recording = "Y";
    std::string m_date = "04.07.89", m_time = "23.05.07";
    Samples m_samples;
    std::vector<std::string> m_onsets;
    std::vector<std::pair<std::size_t, std::string>> m_patches;
    std::string m_tail;
    std::size_t m_length = std::string::npos;
};

} // namespace kvsig::test
