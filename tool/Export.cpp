#include "tool/Command.h"
#include "tool/ExportWriters.h"
#include "tool/LongWork.h"
#include "tool/Output.h"
#include "tool/Recording.h"
#include "tool/RowStream.h"
#include "tool/Rows.h"
#include "tool/SignalOptions.h"
#include "tool/Words.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace kvsig::tool {
namespace {

struct ExportOptions {
    std::string file;
    std::string format = "csv";
    std::string values = "physical";
    std::string output;
    SignalOptions signals;
};

bool rawIsPossible(const Recording& recording, const Rows& rows, const ExportOptions& options) {
    const SignalOptions& signals = options.signals;
    if (signals.lowFilter > 0 || signals.highFilter > 0 || signals.notch > 0) {
        complain(recording.path +
                 ": --values raw gives the file's own integers; it takes no filter");
        return false;
    }
    for (const Row& row : rows.rows())
        if (row.channel < 0) {
            complain(recording.path + ": --values raw: " + row.name +
                     " is a derivation, which has no raw values");
            return false;
        }
    return true;
}

bool writeRaw(const Recording& recording, const Rows& rows, SampleRange range, TableWriter& writer,
              LongWork& work) {
    const long window = windowLengthFor(rows.rows(), range);
    std::vector<std::vector<std::int32_t>> columns(rows.rows().size());
    for (long first = range.first; first <= range.last; first += window) {
        const SampleRange part{first, std::min(range.last, first + window - 1)};
        for (std::size_t i = 0; i < columns.size(); ++i) {
            columns[i].resize(static_cast<std::size_t>(part.length()));
            const Recording::Place place = recording.placeOf(rows.rows()[i].channel);
            place.reader->getRawData(place.channel, part.first, part.last, columns[i].data());
        }
        if (!goOn(work, part, range) || !writer.writeRaw(part, columns))
            return false;
    }
    return true;
}

bool writeValues(const Rows& rows, SampleRange range, bool kernelValues, TableWriter& writer,
                 LongWork& work) {
    RowStream stream(rows.rows(), range);
    stream.setKernelValues(kernelValues);
    while (stream.next())
        if (!goOn(work, stream.window(), range) || !writer.writeValues(stream, rows.rows().size()))
            return false;
    return true;
}

int run(const ExportOptions& options) {
    setQuiet(options.signals.quiet);
    const std::optional<int> type = typeFromName(options.signals.type);
    if (!type)
        return exitWrongUsage;
    const std::optional<Recording> recording = openUsableRecording(options.file, *type);
    if (!recording || isRecordingItself(*recording, options.output) ||
        !filtersFit(*recording, options.signals))
        return exitFailed;
    const std::optional<SampleRange> range = sampleRange(*recording, options.signals);
    Rows rows(*recording);
    if (!range || !rows.select(options.signals))
        return exitFailed;
    const bool raw = options.values == "raw";
    if (raw && !rawIsPossible(*recording, rows, options))
        return exitWrongUsage;

    Output output;
    LongWork work("exporting " + options.file, options.signals.quiet);
    bool written = output.open(options.output);
    if (written) {
        const auto writer = makeTableWriter(
            options.format, output, {&rows.rows(), *range, recording->reader->samplingRate(), raw});
        const bool kernelValues = options.values == "kernel";
        written = writer->writeHead() &&
                  (raw ? writeRaw(*recording, rows, *range, *writer, work)
                       : writeValues(rows, *range, kernelValues, *writer, work)) &&
                  output.commit();
    }
    if (!written)
        complain(work.interrupted() ? options.file + ": interrupted, what was written is incomplete"
                                    : output.error());
    return written ? exitWell : exitFailed;
}

} // namespace

void addExportCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ExportOptions>();
    CLI::App* command = app.add_subcommand("export", "Write samples of channels or derivations");
    command->add_option("FILE", options->file, "Recording")->required();
    command->add_option("--format", options->format, "csv (default), tsv or npy")
        ->check(CLI::IsMember({"csv", "tsv", "npy"}));
    command
        ->add_option("--values", options->values,
                     "physical (default): in the units of the file; kernel: what the library's "
                     "getData gives at gain 1; raw: the file's integers")
        ->check(CLI::IsMember({"physical", "kernel", "raw"}));
    command->add_option("-o,--output", options->output, "File to write (default: standard output)");
    addSignalOptions(*command, options->signals);
    command->callback([options, &exitCode] { exitCode = run(*options); });
}

} // namespace kvsig::tool
