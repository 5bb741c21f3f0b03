#include "kvsig/readers/FlatRecording.h"

#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <cmath>
#include <limits>

namespace kvsig {
namespace {

constexpr short microvoltType = 1;
constexpr short otherUnitType = 100;
constexpr double driftSeconds = 0.1; // between two clocks, and what it grows by in a second:
constexpr double driftRate = 1e-4;

// The micro sign as Latin-1, as UTF-8, or written "u".
bool isMicrovolt(const std::string& units) {
    return equalNoCase(units, "uV") || units == "\xB5V" || units == "\xC2\xB5V";
}

bool fits32(const FlatInteger& integer, double zero) {
    return static_cast<double>(integer.least()) - zero >=
               std::numeric_limits<std::int32_t>::min() &&
           static_cast<double>(integer.greatest()) - zero <=
               std::numeric_limits<std::int32_t>::max();
}

} // namespace

std::int64_t FlatTrack::count() const {
    std::int64_t sum = 0;
    for (const FlatPiece& piece : pieces)
        sum += piece.count;
    return sum;
}

double FlatRecording::clockTolerance(double seconds) const {
    const double drift = clockDrifts ? driftSeconds + driftRate * seconds : 0.0;
    return clockStep + (rate > 0 ? 0.5 / rate : 0.0) + drift;
}

void calibrate(FlatChannel& channel, const FlatScale& scale) {
    const bool whole = scale.zero == std::floor(scale.zero) && fits32(channel.integer, scale.zero);
    if (whole)
        channel.zero = saturate<std::int64_t>(scale.zero);
    else // what signed counts of the same width carry
        channel.zero = channel.integer.isSigned ? 0 : (channel.integer.greatest() + 1) / 2;
    const double left = static_cast<double>(channel.zero) - scale.zero; // 0 when all is subtracted

    channel.units = isMicrovolt(scale.units) ? "uV" : scale.units;
    channel.type = isMicrovolt(scale.units) && whole ? microvoltType : otherUnitType;
    channel.calibration = channel.type == microvoltType ? scale.scale : 1.0;
    channel.digitalLow = saturate<std::int32_t>(scale.low - channel.zero);
    channel.digitalHigh = saturate<std::int32_t>(scale.high - channel.zero);
    // Two equal ends span no line.
    if (channel.digitalHigh == channel.digitalLow)
        channel.digitalHigh +=
            channel.digitalHigh < std::numeric_limits<std::int32_t>::max() ? 1 : -1;
    channel.physioLow = (channel.digitalLow + left) * scale.scale;
    channel.physioHigh = (channel.digitalHigh + left) * scale.scale;
}

void calibrateMicrovolts(FlatChannel& channel, double scale, double zero) {
    calibrate(channel, {"uV", scale, zero, channel.integer.least(), channel.integer.greatest()});
}

std::int64_t wholeFrames(std::int64_t offset, std::int64_t end, std::int64_t frameBytes) {
    return offset < end && frameBytes > 0 ? (end - offset) / frameBytes : 0;
}

} // namespace kvsig
