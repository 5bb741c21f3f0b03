#include "tool/Command.h"
#include "tool/CountStream.h"
#include "tool/ExportWriters.h"
#include "tool/FileNames.h"
#include "tool/RowStream.h"
#include "tool/Selection.h"
#include "tool/Words.h"
#include "tool/raw/RawExport.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

namespace kvsig::tool {
namespace {

struct ExportOptions {
    std::string format; ///< empty: by the output's ending
    std::string values = "physical";
    std::string output;
    bool showPatient = false;
    SignalOptions signals;
};

bool hasRawValues(const Selection& selection, const std::string&) {
    for (const Row& row : selection.rows.rows()) {
        if (row.channel >= 0)
            continue;
        complain(selection.recording.path + ": --values raw: " + row.name +
                 " is a derivation, which has no raw values");
        return false;
    }
    return true;
}

bool writeRaw(const Selection& selection, TableWriter& writer, LongWork& work) {
    CountStream stream(selection);
    while (stream.next(work))
        if (!writer.writeRaw(stream.window(), stream.columns()))
            return false;
    return !work.interrupted();
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
    const std::string ending = endingAmong(options.output, {"csv", "tsv", "npy", "raw"});
    if (!options.format.empty())
        return options.format;
    return ending.empty() ? "csv" : ending;
}

bool isFiltered(const SignalOptions& signals) {
    return signals.lowFilter > 0 || signals.highFilter > 0 || signals.notch > 0;
}

void writeTables(SelectionJob& job, const ExportOptions& options) {
    const bool raw = options.values == "raw";
    if (raw && isFiltered(options.signals))
        throw CLI::ValidationError("--values raw",
                                   "gives the file's own integers; it takes no filter");
    if (raw)
        job.check = hasRawValues;
    const bool kernelValues = options.values == "kernel";
    job.write = [raw, kernelValues, format = job.ending](const Selection& selection, Output& output,
                                                         LongWork& work) {
        const double rate = selection.recording.reader->samplingRate();
        const auto writer =
            makeTableWriter(format, output, {&selection.rows.rows(), selection.range, rate, raw});
        return writer->writeHead() && (raw ? writeRaw(selection, *writer, work)
                                           : writeValues(selection, kernelValues, *writer, work));
    };
}

void writeInterleaved(SelectionJob& job, const ExportOptions& options) {
    if (options.values != "physical")
        throw CLI::ValidationError("--values " + options.values,
                                   "goes with tables; --format raw chooses its own counts");
    if (options.output.empty() || options.output == "-")
        throw CLI::ValidationError("--format raw", "writes two files; it needs --output");
    const auto raw = std::make_shared<RawExport>(isFiltered(options.signals), options.showPatient);
    job.check = isFitForRaw;
    job.companion = layoutPathFor;
    job.write = [raw](const Selection& selection, Output& output, LongWork& work) {
        return raw->writeData(selection, output, work);
    };
    job.finish = [raw](const Selection& selection, const std::string& path) {
        return raw->writeLayout(selection, path);
    };
}

int run(const ExportOptions& options) {
    const std::string format = formatOf(options);
    SelectionJob job;
    job.signals = &options.signals;
    job.output = options.output;
    job.ending = format;
    job.doing = "exporting";
    if (format == "raw")
        writeInterleaved(job, options);
    else
        writeTables(job, options);
    return runForEachFile(job);
}

} // namespace

void addExportCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ExportOptions>();
    CLI::App* command = app.add_subcommand("export", "Write samples of channels or derivations");
    command->footer("Examples:\n"
                    "  kvsig export night.edf --to 10 -o start.csv\n"
                    "  kvsig export night.edf --channels Fp1-F7,C3-A1+A2 --from 0:20 --to 0:30\n"
                    "  kvsig export night.edf --montage Transverse --low-filter 1 -o night.npy");
    command
        ->add_option("--format", options->format,
                     "raw is interleaved 16-bit data with the layout that describes it "
                     "(default: by the output's ending, else csv)")
        ->check(CLI::IsMember({"csv", "tsv", "npy", "raw"}))
        ->group("Output");
    command
        ->add_option("--values", options->values,
                     "physical: in the units of the file; kernel: what the library's getData "
                     "gives at gain 1; raw: the file's integers (default: physical)")
        ->check(CLI::IsMember({"physical", "kernel", "raw"}))
        ->group("Output");
    command
        ->add_option("-o,--output", options->output,
                     "File to write, or folder for several; one that ends in / is made "
                     "(default: standard output)")
        ->type_name("PATH")
        ->group("Output");
    command
        ->add_flag("--show-patient", options->showPatient,
                   "Write who was recorded into the layout of raw data")
        ->group("Output");
    addSignalOptions(*command, options->signals);
    command->callback([options, &exitCode] { exitCode = run(*options); });
}

} // namespace kvsig::tool
