#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
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

    EdfFile& bdf();
    EdfFile& signal(const std::string& label, int samplesPerRecord);
    EdfFile& units(const std::string& text);
    EdfFile& physical(const std::string& low, const std::string& high);
    EdfFile& digital(const std::string& low, const std::string& high);
    EdfFile& samples(Samples values);
    EdfFile& records(int count);
    /// As many records; their annotation signals begin with these onsets ("+0"), empty for none.
    EdfFile& onsets(std::vector<std::string> texts);
    EdfFile& duration(const std::string& seconds);
    EdfFile& reserved(const std::string& text);
    EdfFile& patient(const std::string& text);
    EdfFile& recording(const std::string& text);
    EdfFile& start(const std::string& date, const std::string& time);
    /// Overwrites bytes of the finished file, as often as needed.
    EdfFile& poke(std::size_t offset, const std::string& bytes);
    EdfFile& append(const std::string& bytes);
    EdfFile& truncate(std::size_t length);

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
        int samplesPerRecord = 0;
        std::string units = "uV";
        std::string physicalLow = "-3276.8", physicalHigh = "3276.7";
        std::string digitalLow = "-32768", digitalHigh = "32767";
    };
    struct Patch {
        std::size_t offset;
        std::string bytes;
    };

    bool m_bdf = false;
    std::vector<Signal> m_signals;
    int m_records = 1;
    std::string m_duration = "1", m_reserved, m_patient = "X", m_recording = "Y";
    std::string m_date = "04.07.89", m_time = "23.05.07";
    Samples m_samples;
    std::vector<std::string> m_onsets;
    std::vector<Patch> m_patches;
    std::string m_tail;
    std::size_t m_length = std::string::npos;
};

} // namespace kvsig::test
