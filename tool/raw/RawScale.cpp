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
    return place.reader->bytesPerSample() == 2 && calibration > 0 && std::isfinite(calibration) &&
           place.reader->channelType(place.channel) != otherUnitType &&
           place.reader->samplingRate() == recording.reader->samplingRate();
}

// How many steps of `base` one of `calibration` is; 0 when that is no whole number.
int wholeMultiple(double calibration, double base) {
    const double steps = std::round(calibration / base);
    constexpr double rounding = 1e-12; // what the divisions that made the calibrations leave
    const bool whole = steps >= 1 && steps <= largestCount &&
                       std::abs(steps * base - calibration) <= rounding * calibration;
    return whole ? static_cast<int>(steps) : 0;
}

// Empty when the calibrations have no common step, or the multiplied counts might not fit.
std::vector<int> multipliersFor(const Recording& recording, const Rows& rows, double base) {
    std::vector<int> multipliers;
    for (const Row& row : rows.rows()) {
        IDataReader& reader = *recording.reader;
        const int multiplier = wholeMultiple(reader.calibration(row.channel), base);
        const std::int64_t largest =
            std::max(std::abs(std::int64_t{reader.digitalLow(row.channel)}),
                     std::abs(std::int64_t{reader.digitalHigh(row.channel)}));
        if (multiplier == 0 || (multiplier > 1 && multiplier * largest > largestCount))
            return {};
        multipliers.push_back(multiplier);
    }
    return multipliers;
}

double smallestCalibration(const Recording& recording, const Rows& rows) {
    double smallest = std::numeric_limits<double>::infinity();
    for (const Row& row : rows.rows())
        smallest = std::min(smallest, recording.reader->calibration(row.channel));
    return smallest;
}

// The largest finite value of the range, whatever its sign; below 0 when interrupted.
double largestValue(const Rows& rows, SampleRange range, LongWork& work) {
    double largest = 0.0;
    RowStream stream(rows.rows(), range);
    while (stream.next()) {
        if (!goOn(work, stream.window(), range))
            return -1.0;
        for (std::size_t row = 0; row < rows.rows().size(); ++row) {
            const float* values = stream.values(row);
            for (long i = 0; i < stream.window().length(); ++i)
                if (std::isfinite(values[i]))
                    largest = std::max(largest, static_cast<double>(std::abs(values[i])));
        }
    }
    return largest;
}

void tellLostFacts(const Rows& rows, RawScale& scale) {
    for (const Row& row : rows.rows()) {
        if (!row.microvolts)
            scale.losses.push_back("the unit of " + row.name + " (" + toUtf8(row.units) +
                                   ") is not kept");
        if (scale.isExact() && row.offset != 0.0)
            scale.losses.push_back("the constant of " + row.name + ", " + shortestText(row.offset) +
                                   " " + toUtf8(row.units) + ", is not kept");
    }
}

} // namespace

RawScale rawScaleFor(const Recording& recording, const Rows& rows, SampleRange range, bool filtered,
                     LongWork& work, bool& done) {
    RawScale scale;
    done = true;
    const auto& all = rows.rows();
    if (!filtered && std::all_of(all.begin(), all.end(), [&recording](const Row& row) {
            return isLinear16(recording, row);
        })) {
        scale.calibration = smallestCalibration(recording, rows);
        scale.multipliers = multipliersFor(recording, rows, scale.calibration);
    }
    if (!scale.isExact()) {
        const double largest = largestValue(rows, range, work);
        done = largest >= 0.0;
        scale.calibration = largest > 0.0 ? largest / largestCount : 1.0;
        scale.losses.push_back("values are rounded to steps of " +
                               generalText(scale.calibration, 4));
    }
    tellLostFacts(rows, scale);
    return scale;
}

} // namespace kvsig::tool
