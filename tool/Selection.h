#pragma once

#include "tool/LongWork.h"
#include "tool/Output.h"
#include "tool/Recording.h"
#include "tool/Rows.h"
#include "tool/SignalOptions.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kvsig::tool {

/// What export and plot work on: an open recording, a range of its samples and rows of its
/// channels.
struct Selection {
    explicit Selection(Recording opened) : recording(std::move(opened)), rows(recording) {}

    Recording recording;
    SampleRange range;
    Rows rows;
};

/// The files of a command and what is done with them.
struct SelectionJob {
    const SignalOptions* signals = nullptr;
    std::string output;     ///< a path, a folder, or empty for standard output
    std::string ending;     ///< of the files written into a folder
    std::string doing;      ///< "exporting"
    bool keepsGaps = false; ///< of a montage
    /// Writes what the selection shows; false when writing failed or the work was interrupted.
    std::function<bool(const Selection&, Output&, LongWork&)> write;
    /// Complains of a selection that cannot be written to that path; may be empty.
    std::function<bool(const Selection&, const std::string& path)> check;
    /// The path of a second file that is written beside an output; may be empty.
    std::function<std::string(const std::string& path)> companion;
    /// Follows when an output stands under its name; complains when it fails. May be empty.
    std::function<bool(const Selection&, const std::string& path)> finish;
};

/// Does the job for each file of the options, the others still when one fails, and none any more
/// after an interrupt. Returns the exit code; throws a CLI::ParseError for wrong usage.
[[nodiscard]] int runForEachFile(const SelectionJob& job);

} // namespace kvsig::tool
