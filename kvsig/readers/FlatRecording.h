#pragma once

#include "kvsig/kernel/PatientRec.h"
#include "kvsig/readers/CalendarTime.h"
#include "kvsig/readers/FlatDecode.h"
#include "kvsig/readers/HeaderFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// A flat recording is integers at offsets. A format describes where they stand and what they mean;
/// FlatReader reads them.
namespace kvsig {

/// Frames that follow each other in the file without anything between them.
struct FlatPiece {
    std::int64_t offset = 0; ///< of the first byte in the file
    std::int64_t count = 0;  ///< frames
};

/// Samples that are stored together: the frames of many channels, or the run of a single one. Its
/// pieces are counted through: the first sample of a piece follows the last of the one before,
/// whatever lies between them in the file.
struct FlatTrack {
    std::int64_t frameBytes = 0; ///< from one frame to the next, with what may stand in between
    /// Samples of a channel that stand together. 1: frames are stored one by one. More: in groups
    /// of that many frames (a short one at the end of a piece), first channel 0's samples, then
    /// channel 1's, and so on.
    std::int64_t together = 1;
    double rate = 0.0; ///< hertz; 0: the recording's. A slower track's samples are repeated.
    std::vector<FlatPiece> pieces;
    /// The track's own first sample of every segment; empty: as the segments are counted.
    std::vector<std::int64_t> segmentStarts;

    [[nodiscard]] std::int64_t count() const; ///< frames in all pieces
};

/// A channel: where it stands in the frames of its track, and what the kernel is to know of it.
struct FlatChannel {
    int track = 0;
    std::int64_t place = 0; ///< bytes from the start of a frame to the sample
    FlatInteger integer;
    std::int64_t zero = 0; ///< subtracted from what is stored; calibrate() sets it

    std::string grid1;
    std::string grid2;
    std::string name; ///< empty: made of grid 1 and grid 2
    std::string units = "uV";
    short type = 1;
    double calibration = 1.0;
    double dcOffset = 0.0;
    double physioLow = -1.0;
    double physioHigh = 1.0;
    std::int32_t digitalLow = -2048;
    std::int32_t digitalHigh = 2048;
};

/// How stored integers become physical values: (stored - zero) * scale, in `units`; `low` and
/// `high` are the stored values between which the range lies.
struct FlatScale {
    std::string units = "uV";
    double scale = 1.0;
    double zero = 0.0;
    std::int64_t low = 0;
    std::int64_t high = 0;
};

/// Gives the channel the calibration with which getData() at gain 1 yields physical values: type 1
/// for microvolts where the zero can be subtracted from the counts, else type 100. Needs `integer`.
void calibrate(FlatChannel& channel, const FlatScale& scale);
/// The same for microvolts over all that the integer holds.
void calibrateMicrovolts(FlatChannel& channel, double scale, double zero = 0.0);

/// Recorded without a pause.
struct FlatSegment {
    std::int64_t count = 0; ///< samples at the recording's rate
    double start = 0.0;     ///< seconds since midnight of the recording's first day
};

/// What a format hands over.
struct FlatRecording {
    HeaderFile samples; ///< the file that holds them; need not be the one that was opened
    double rate = 0.0;  ///< hertz, that of the fastest channel
    std::vector<FlatTrack> tracks;
    std::vector<FlatChannel> channels;
    std::vector<FlatSegment> segments;
    double clockStep = 0.0; ///< seconds, in which the starts of segments are counted
    /// Starts are by another clock than the one that samples are taken by: the two drift apart.
    bool clockDrifts = false;
    CalendarTime start; ///< of the recording, for the patient record
    PatientRec patient{};

    /// Seconds by which a segment's start may be off from the end of what was recorded before it,
    /// `seconds` long, when nothing lies between the two.
    [[nodiscard]] double clockTolerance(double seconds) const;
};

/// What happened at a sample.
struct FlatEvent {
    std::int64_t sample = 0; ///< at the recording's rate
    std::string text;
    std::string label;     ///< channel or target; empty for all
    double duration = 0.0; ///< seconds
};

/// The whole frames between two offsets of a file.
[[nodiscard]] std::int64_t wholeFrames(std::int64_t offset, std::int64_t end,
                                       std::int64_t frameBytes);

} // namespace kvsig
