#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvsig::tool {

enum class EdfKind { edf, edfPlus, bdf };

/// A moment by the clock, in the years 1985 to 2084 that EDF's two digits cover.
struct StartTime {
    int year = 2024, month = 3, day = 15;
    int hour = 22, minute = 30, second = 0;
};

/// Reads "dd.mm.yy hh.mm.ss"; nothing for what is no date or no time of day.
[[nodiscard]] std::optional<StartTime> readStartTime(std::string_view text);

struct EdfSignal {
    std::string label;
    std::string transducer;
    std::string units;
    double physicalMinimum = 0, physicalMaximum = 0;
    std::int32_t digitalMinimum = 0, digitalMaximum = 0;
    std::int64_t samplesPerRecord = 0;
};

/// The header of a recording without a patient.
struct EdfHeader {
    EdfKind kind = EdfKind::edfPlus;
    StartTime start;
    std::string remark; ///< what it is a recording of, one word in EDF+
    std::int64_t records = 0;
    double recordDuration = 1; ///< seconds
    std::vector<EdfSignal> signals;

    [[nodiscard]] std::size_t bytesPerSample() const { return kind == EdfKind::bdf ? 3 : 2; }
    [[nodiscard]] std::size_t recordBytes() const;
};

/// The header's bytes, 256 for the recording and 256 for each signal. A value that does not fit in
/// its field gives an empty text and a `reason` that names both.
[[nodiscard]] std::string headerBytes(const EdfHeader& header, std::string& reason);

} // namespace kvsig::tool
