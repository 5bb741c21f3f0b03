#include "tool/check/AnchorOddities.h"

#include "kvsig/readers/FlatReader.h"
#include "kvsig/util/NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>

namespace kvsig::tool {
namespace {

using Severity = OpenFinding::Severity;

constexpr std::size_t toldInFull = 20;
// Where nothing is known of the recorder's clock.
constexpr double writtenStep = 0.001; // seconds; anchors have three decimals in attribute files
constexpr double drift = 1e-4;        // of a clock against the samples, seconds a second

std::string secondsText(double seconds) {
    const bool isTime = std::abs(seconds) < 1e9;
    return shortestText(isTime ? std::round(seconds * 1e6) / 1e6 : seconds) + " s";
}

// `length` seconds, below 0 for an overlap, at `place` seconds into the recording.
std::string breakText(double length, double place, long nextSample) {
    const std::string sample = "sample " + std::to_string(nextSample);
    return length > 0 ? "a gap of " + secondsText(length) + " at " + secondsText(place) +
                            ", before " + sample
                      : sample + " overlaps by " + secondsText(-length) + " with what ends at " +
                            secondsText(place);
}

} // namespace

std::vector<OpenFinding> anchorOddities(DataReader& recording) {
    std::vector<OpenFinding> found;
    const double rate = recording.samplingRate();
    if (!(rate > 0) || recording.sampleTimeCount() < 2)
        return found;
    const auto* flat = dynamic_cast<const FlatReader*>(&recording);
    std::size_t moreGaps = 0;
    std::size_t moreOverlaps = 0;
    SampleTime start;
    recording.getSampleTime(0, start);
    SampleTime last = start;
    double due = start.time;
    for (int i = 1; i < recording.sampleTimeCount(); ++i) {
        SampleTime anchor;
        recording.getSampleTime(i, anchor);
        const double seconds = (static_cast<double>(anchor.sample) - last.sample) / rate;
        const double end = last.time + seconds;
        // What lies inside an earlier segment ends no later than that.
        due = flat ? std::max(due, end) : end;
        const double length = anchor.time - due;
        last = anchor;
        const double tolerance =
            flat ? flat->clockTolerance(seconds) : writtenStep + 0.5 / rate + drift * seconds;
        // Overlaps of segments were told at opening, and no layout gives these other anchors.
        if (std::abs(length) <= tolerance || (flat && length < 0))
            continue;
        if (found.size() == toldInFull) {
            ++(length > 0 ? moreGaps : moreOverlaps);
            continue;
        }
        found.push_back({Severity::warning, breakText(length, due - start.time, anchor.sample)});
    }
    if (moreGaps + moreOverlaps > 0)
        found.push_back({Severity::warning, std::to_string(moreGaps) + " more gaps and " +
                                                std::to_string(moreOverlaps) +
                                                " more overlaps between anchors"});
    return found;
}

} // namespace kvsig::tool
