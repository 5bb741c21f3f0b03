#include "tool/Selection.h"

#include "kvsig/util/Text.h"
#include "tool/Command.h"
#include "tool/FileNames.h"
#include "tool/Words.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <optional>

namespace kvsig::tool {
namespace {

bool wouldReplaceRecording(const SelectionJob& job, const Recording& recording,
                           const std::string& output) {
    return isRecordingItself(recording, output) ||
           (job.companion && isRecordingItself(recording, job.companion(output)));
}

std::unique_ptr<Selection> openSelection(const SelectionJob& job, const std::string& file, int type,
                                         const std::string& output) {
    const SignalOptions& signals = *job.signals;
    std::optional<Recording> recording = openUsableRecording(file, type);
    if (!recording || wouldReplaceRecording(job, *recording, output) ||
        !filtersFit(*recording, signals))
        return nullptr;
    const std::optional<SampleRange> range = sampleRange(*recording, signals);
    if (!range)
        return nullptr;
    auto selection = std::make_unique<Selection>(std::move(*recording));
    selection->range = *range;
    return selection->rows.select(signals, job.keepsGaps) ? std::move(selection) : nullptr;
}

// The companion would be put in the place of the output just written. Names that differ in letter
// case alone are one file on some disks.
void refuseOneFileForTwo(const std::string& output, const std::string& companion) {
    std::error_code ignored;
    if (equalNoCase(output, companion) || std::filesystem::equivalent(output, companion, ignored))
        throw CLI::ValidationError("--output " + output,
                                   "the layout " + companion +
                                       " would take the place of the data; choose another name");
}

// The folder that a "/" at the end of the output asks for.
bool makeFolder(const std::string& output) {
    std::error_code fault;
    if (output.ends_with('/'))
        std::filesystem::create_directories(output, fault);
    if (fault)
        complain(output + ": cannot be made: " + fault.message());
    return !fault;
}

int writeSelection(const SelectionJob& job, const Selection& selection, const std::string& path,
                   LongWork& work) {
    if (job.check && !job.check(selection, path))
        return exitWrongUsage;
    if (!makeFolder(job.output))
        return exitFailed;
    Output output;
    if (output.open(path) && job.write(selection, output, work) && output.commit())
        return !job.finish || job.finish(selection, path) ? exitWell : exitFailed;
    const std::string& file = selection.recording.path;
    if (!work.interrupted())
        complain(output.error());
    else
        complain(file + (path.empty() ? ": interrupted, what was written is incomplete"
                                      : ": interrupted, not written"));
    return exitFailed;
}

} // namespace

int runForEachFile(const SelectionJob& job) {
    const SignalOptions& signals = *job.signals;
    setQuiet(signals.quiet);
    const std::vector<std::string> paths = outputPaths(signals.files, job.output, job.ending);
    if (job.companion)
        for (const std::string& path : paths)
            refuseOneFileForTwo(path, job.companion(path));
    const std::optional<int> type = typeFromName(signals.type);
    if (!type)
        return exitWrongUsage;
    int exitCode = exitWell;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const std::string& file = signals.files[i];
        const auto selection = openSelection(job, file, *type, paths[i]);
        LongWork work(job.doing + " " + file, signals.quiet);
        exitCode = std::max(exitCode, selection ? writeSelection(job, *selection, paths[i], work)
                                                : exitFailed);
        if (work.interrupted())
            break;
    }
    return exitCode;
}

} // namespace kvsig::tool
