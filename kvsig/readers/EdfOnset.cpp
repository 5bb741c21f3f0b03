#include "kvsig/readers/EdfOnset.h"

#include "kvsig/util/NumberText.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace kvsig::edf {
namespace {

/// The bytes at the start of the first annotation signal in a data record.
struct OnsetPlace {
    std::int64_t offset; ///< from the record's start
    std::int64_t bytes;
};

std::optional<OnsetPlace> onsetPlace(const Header& header, int sampleBytes) {
    constexpr std::int64_t longestOnset = 64;
    std::int64_t offset = 0;
    for (std::int64_t i = 0; i < header.fileSignals(); ++i) {
        const std::int64_t count = header.signalSamples()[static_cast<std::size_t>(i)];
        const std::int64_t bytes = std::max<std::int64_t>(count, 0) * sampleBytes;
        if (isAnnotation(header, i))
            return OnsetPlace{offset, std::min(bytes, longestOnset)};
        offset += bytes;
    }
    return std::nullopt;
}

} // namespace

std::optional<double> recordOnset(std::string_view annotationBytes) {
    constexpr char onsetEnd = '\x14';
    const std::string_view text = annotationBytes.substr(0, annotationBytes.find(onsetEnd));
    double seconds = 0.0;
    const bool isSigned = text.starts_with('+') || text.starts_with('-');
    if (text.size() == annotationBytes.size() || !isSigned || !wholeDouble(text, seconds))
        return std::nullopt;
    return seconds;
}

std::string secondsText(double seconds) {
    return shortestText(std::round(seconds * 1e6) / 1e6) + " s";
}

double onsetTolerance(const Header& header, std::int64_t records) {
    constexpr double ofOnsets = 1e-4;
    const std::string text = header.text(recordDuration);
    const std::size_t point = text.find('.');
    // A duration that fills its field may have lost digits: half a unit of the last one.
    if (point == std::string::npos || std::cmp_less(text.size(), recordDuration.width))
        return ofOnsets;
    const auto decimals = static_cast<double>(text.size() - point - 1);
    return ofOnsets + static_cast<double>(records) * 0.5 * std::pow(10.0, -decimals);
}

double lastOnsetShift(const File& file, const Header& header, int sampleBytes) {
    const std::int64_t bytes = recordBytes(header, sampleBytes);
    const std::optional<OnsetPlace> place = onsetPlace(header, sampleBytes);
    if (!place || bytes <= 0 || header.dataOffset() < fullLength(header.fileSignals()) ||
        !(header.duration() > 0))
        return 0.0;
    const std::int64_t last = (file.size() - header.dataOffset()) / bytes - 1;
    if (last < 1)
        return 0.0;
    const auto onsetOf = [&](std::int64_t record) {
        std::string text(static_cast<std::size_t>(place->bytes), '\0');
        const std::int64_t read = file.readAt(header.dataOffset() + record * bytes + place->offset,
                                              text.data(), place->bytes);
        return recordOnset(std::string_view(text).substr(0, static_cast<std::size_t>(read)));
    };
    const std::optional<double> firstOnset = onsetOf(0);
    const std::optional<double> lastOnset = onsetOf(last);
    if (!firstOnset || !lastOnset)
        return 0.0;
    const double shift = *lastOnset - (*firstOnset + static_cast<double>(last) * header.duration());
    return std::abs(shift) > onsetTolerance(header, last) ? shift : 0.0;
}

} // namespace kvsig::edf
