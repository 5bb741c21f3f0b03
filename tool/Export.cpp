#include "tool/Command.h"
#include "tool/ExportWriters.h"
#include "tool/FileNames.h"
#include "tool/RowStream.h"
#include "tool/Selection.h"
#include "tool/Words.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace kvsig::tool {
namespace {

struct ExportOptions {
    std::string format; ///< empty: by the output's ending
    std::string values = "physical";
    std::string output;
    SignalOptions signals;
};

bool hasRawValues(const Selection& selection) {
    for (const Row& row : selection.rows.rows())
        if (row.channel < 0) {
            complain(selection.recording.path + ": --values raw: " + row.name +
                     " is a derivation, which has no raw values");
            return false;
        }
    return true;
}

bool writeRaw(const Selection& selection, TableWriter& writer, LongWork& work) {
    const std::vector<Row>& rows = selection.rows.rows();
    const SampleRange range = selection.range;
    const long window = windowLengthFor(rows, range);
    std::vector<std::vector<std::int32_t>> columns(rows.size());
    for (long first = range.first; first <= range.last; first += window) {
        const SampleRange part{first, std::min(range.last, first + window - 1)};
        for (std::size_t i = 0; i < columns.size(); ++i) {
            columns[i].resize(static_cast<std::size_t>(part.length()));
            selection.recording.details->getRawData(rows[i].channel, part.first, part.last,
                                                    columns[i].data());
        }
        if (!goOn(work, part, range) || !writer.writeRaw(part, columns))
            return false;
    }
    return true;
}

bool writeValues(const Selection& selection, bool kernelValues, TableWriter& writer,
                 LongWork& work) {
    const std::vector<Row>& rows = selection.rows.rows();
    RowStream stream(rows, selection.range);
    stream.setKernelValues(kernelValues);
    while (stream.next())
        if (!goOn(work, stream.window(), selection.range) ||
            !writer.writeValues(stream, rows.size()))
            return false;
    return true;
}

std::string formatOf(const ExportOptions& options) {
    const std::string ending = endingAmong(options.output, {"csv", "tsv", "npy"});
    if (!options.format.empty())
        return options.format;
    return ending.empty() ? "csv" : ending;
}

int run(const ExportOptions& options) {
    const SignalOptions& signals = options.signals;
    const bool raw = options.values == "raw";
    if (raw && (signals.lowFilter > 0 || signals.highFilter > 0 || signals.notch > 0))
        throw CLI::ValidationError("--values raw",
                                   "gives the file's own integers; it takes no filter");
    const std::string format = formatOf(options);
    SelectionJob job{&signals, options.output, format, "exporting", {}, {}};
    job.write = [&](const Selection& selection, Output& output, LongWork& work) {
        const double rate = selection.recording.reader->samplingRate();
        const auto writer =
            makeTableWriter(format, output, {&selection.rows.rows(), selection.range, rate, raw});
        return writer->writeHead() &&
               (raw ? writeRaw(selection, *writer, work)
                    : writeValues(selection, options.values == "kernel", *writer, work));
    };
    if (raw)
        job.check = hasRawValues;
    return runForEachFile(job);
}

} // namespace

void addExportCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ExportOptions>();
    CLI::App* command = app.add_subcommand("export", "Write samples of channels or derivations");
    command
        ->add_option("--format", options->format,
                     "csv, tsv or npy (default: by the output's ending, else csv)")
        ->check(CLI::IsMember({"csv", "tsv", "npy"}));
    command
        ->add_option("--values", options->values,
                     "physical (default): in the units of the file; kernel: what the library's "
                     "getData gives at gain 1; raw: the file's integers")
        ->check(CLI::IsMember({"physical", "kernel", "raw"}));
    command->add_option("-o,--output", options->output,
                        "File to write, or folder for several (default: standard output)");
    addSignalOptions(*command, options->signals);
    command->callback([options, &exitCode] { exitCode = run(*options); });
}

} // namespace kvsig::tool
