#include "tool/raw/RawScale.h"

#include "kvsig/util/NumberText.h"
#include "tool/RowStream.h"
#include "tool/Words.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kvsig::tool {
namespace {

constexpr int largestCount = std::numeric_limits<std::int16_t>::max();
constexpr short otherUnitType = 100;

bool isLinear16(const Recording& recording, const Row& row) {
    if (row.channel < 0)
        return false;
    const Recording::Place place = recording.placeOf(row.channel);
    const double calibration = place.reader->calibration(place.channel);
    return place.reader->bytesPerSample() == 2 && calibration != 0.0 &&
           std::isfinite(calibration) &&
           place.reader->channelType(place.channel) != otherUnitType &&
           place.reader->samplingRate() == recording.reader->samplingRate();
}

// How many steps of `base` one of `calibration` is; 0 when that is no whole number.
int wholeMultiple(double calibration, double base) {
    const double steps = std::round(calibration / base);
    constexpr double rounding = 1e-12; // what the divisions that made the calibrations leave
    const bool whole = steps != 0.0 && std::abs(steps) <= largestCount &&
                       std::abs(steps * base - calibration) <= rounding * std::abs(calibration);
    return whole ? static_cast<int>(steps) : 0;
}

// Empty when the calibrations have no common step, or the multiplied counts might not fit.
std::vector<int> multipliersFor(const Recording& recording, const std::vector<Row>& rows,
                                double base) {
    std::vector<int> multipliers;
    for (const Row& row : rows) {
        IDataReader& reader = *recording.reader;
        const int multiplier = wholeMultiple(reader.calibration(row.channel), base);
        const std::int64_t largest =
            std::max(std::abs(std::int64_t{reader.digitalLow(row.channel)}),
                     std::abs(std::int64_t{reader.digitalHigh(row.channel)}));
        if (multiplier == 0 || (multiplier != 1 && std::abs(multiplier) * largest > largestCount))
            return {};
        multipliers.push_back(multiplier);
    }
    return multipliers;
}

double smallestCalibration(const Recording& recording, const std::vector<Row>& rows) {
    double smallest = std::numeric_limits<double>::infinity();
    for (const Row& row : rows) {
        const double calibration = recording.reader->calibration(row.channel);
        if (std::abs(calibration) < std::abs(smallest))
            smallest = calibration;
    }
    return smallest;
}

struct Peak {
    double value = 0.0; ///< whatever its sign
    std::size_t row = 0;
};

// The largest finite value of the range; false when interrupted.
bool findPeak(const Selection& selection, LongWork& work, Peak& peak) {
    const std::size_t rows = selection.rows.rows().size();
    RowStream stream(selection.rows.rows(), selection.range);
    while (stream.next()) {
        if (!goOn(work, stream.window(), selection.range))
            return false;
        for (std::size_t row = 0; row < rows; ++row) {
            const float* values = stream.values(row);
            for (long i = 0; i < stream.window().length(); ++i) {
                const double size = std::abs(static_cast<double>(values[i]));
                if (std::isfinite(size) && size > peak.value)
                    peak = {size, row};
            }
        }
    }
    return true;
}

void tellLostFacts(const std::vector<Row>& rows, RawScale& scale) {
    for (const Row& row : rows) {
        if (!row.microvolts)
            scale.losses.push_back("the unit of " + row.name + " (" + toUtf8(row.units) +
                                   ") is not kept");
        if (scale.isExact() && row.offset != 0.0)
            scale.losses.push_back("the constant of " + row.name + ", " + shortestText(row.offset) +
                                   " " + toUtf8(row.units) + ", is not kept");
    }
}

} // namespace

bool chooseRawScale(const Selection& selection, bool filtered, LongWork& work, RawScale& scale) {
    scale = RawScale();
    const std::vector<Row>& rows = selection.rows.rows();
    const Recording& recording = selection.recording;
    if (!filtered && std::all_of(rows.begin(), rows.end(), [&recording](const Row& row) {
            return isLinear16(recording, row);
        })) {
        scale.calibration = smallestCalibration(recording, rows);
        scale.multipliers = multipliersFor(recording, rows, scale.calibration);
    }
    if (!scale.isExact()) {
        Peak peak;
        if (!findPeak(selection, work, peak))
            return false;
        scale.calibration = peak.value > 0.0 ? peak.value / largestCount : 1.0;
        scale.losses.push_back("values are rounded to steps of " +
                               generalText(scale.calibration, 4) + ", at which " +
                               rows[peak.row].name + " fits, the largest");
    }
    tellLostFacts(rows, scale);
    return true;
}

} // namespace kvsig::tool
