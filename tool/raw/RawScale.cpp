#include "tool/raw/RawScale.h"

#include "kvsig/util/NumberText.h"
#include "tool/CountStream.h"
#include "tool/PhysicalValues.h"
#include "tool/RowStream.h"
#include "tool/Words.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kvsig::tool {
namespace {

constexpr int largestCount = std::numeric_limits<std::int16_t>::max();

bool isLinear16(const Row& row) {
    if (row.channel < 0)
        return false;
    const Recording::Place& place = row.place;
    const double calibration = place.reader->calibration(place.channel);
    return place.reader->bytesPerSample() == 2 && calibration != 0.0 &&
           std::isfinite(calibration) && place.reader->channelType(place.channel) != otherUnitType;
}

// How many steps of `base` one of `calibration` is; 0 when that is no whole number.
int wholeMultiple(double calibration, double base) {
    const double steps = std::round(calibration / base);
    constexpr double rounding = 1e-12; // what the divisions that made the calibrations leave
    const bool whole = steps != 0.0 && std::abs(steps) <= largestCount &&
                       std::abs(steps * base - calibration) <= rounding * std::abs(calibration);
    return whole ? static_cast<int>(steps) : 0;
}

// Empty when the calibrations have no common step.
std::vector<int> multipliersFor(const Recording& recording, const std::vector<Row>& rows,
                                double base) {
    std::vector<int> multipliers;
    for (const Row& row : rows) {
        const int multiplier = wholeMultiple(recording.reader->calibration(row.channel), base);
        if (multiplier == 0)
            return {};
        multipliers.push_back(multiplier);
    }
    return multipliers;
}

// Whether the counts of the range stay 16-bit ones when they are multiplied: a file may hold more
// than its digital limits say. Empties the multipliers if they do not; false when interrupted.
bool keepIfCountsFit(const Selection& selection, LongWork& work, std::vector<int>& multipliers) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int16_t>::min();
    if (std::all_of(multipliers.begin(), multipliers.end(), [](int each) { return each == 1; }))
        return true; // the counts are 16-bit ones as they are
    CountStream stream(selection);
    while (stream.next(work))
        for (std::size_t row = 0; row < multipliers.size(); ++row)
            for (const std::int64_t count : stream.columns()[row]) {
                const std::int64_t multiplied = count * multipliers[row];
                if (multiplied < lowest || multiplied > largestCount) {
                    multipliers.clear();
                    return true;
                }
            }
    return !work.interrupted();
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
    long notFinite = 0; ///< values that are none
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
                if (!std::isfinite(size))
                    ++peak.notFinite;
                else if (size > peak.value) {
                    peak.value = size;
                    peak.row = row;
                }
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
    if (!filtered && std::all_of(rows.begin(), rows.end(), isLinear16)) {
        scale.calibration = smallestCalibration(recording, rows);
        scale.multipliers = multipliersFor(recording, rows, scale.calibration);
        if (!keepIfCountsFit(selection, work, scale.multipliers))
            return false;
    }
    if (!scale.isExact()) {
        Peak peak;
        if (!findPeak(selection, work, peak))
            return false;
        scale.calibration = peak.value > 0.0 ? peak.value / largestCount : 1.0;
        scale.losses.push_back("values are rounded to steps of " +
                               generalText(scale.calibration, 4) + ", at which " +
                               rows[peak.row].name + " fits, the largest");
        if (peak.notFinite > 0)
            scale.losses.push_back(std::to_string(peak.notFinite) +
                                   " values that are no finite numbers are not kept");
    }
    tellLostFacts(rows, scale);
    return true;
}

} // namespace kvsig::tool
