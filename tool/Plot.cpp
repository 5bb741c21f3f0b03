#include "tool/Command.h"
#include "tool/LongWork.h"
#include "tool/Output.h"
#include "tool/Recording.h"
#include "tool/RowStream.h"
#include "tool/Rows.h"
#include "tool/SignalOptions.h"
#include "tool/Words.h"
#include "tool/plot/Canvas.h"
#include "tool/plot/PageDrawing.h"
#include "tool/plot/PageLayout.h"
#include "tool/plot/TraceReducer.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

namespace kvsig::tool {
namespace {

constexpr int traceColumns = 1500; // as many as a picture has pixels across

struct PlotOptions {
    std::string file;
    std::string output;
    double sensitivity = 0; ///< microvolts per millimetre; 0: one that fits
    SignalOptions signals;
};

// Fewer traces than rows when the user has interrupted the work.
std::vector<TraceReducer> reduceTraces(const Rows& rows, SampleRange range, LongWork& work) {
    std::vector<TraceReducer> traces(rows.rows().size(),
                                     TraceReducer(range.length(), traceColumns));
    RowStream stream(rows.rows(), range);
    while (stream.next()) {
        if (!goOn(work, stream.window(), range))
            return {};
        for (std::size_t i = 0; i < traces.size(); ++i)
            traces[i].add(stream.values(i), stream.window().length());
    }
    for (TraceReducer& trace : traces)
        trace.finish();
    return traces;
}

double chosenSensitivity(const Rows& rows, const std::vector<TraceReducer>& traces,
                         const PageLayout& layout) {
    constexpr double usualRoom = 1.2; // rows may reach into their neighbours, as on paper
    std::vector<double> spans;
    for (std::size_t i = 0; i < traces.size(); ++i)
        if (!hasOwnScale(rows.rows()[i]) && !traces[i].empty())
            spans.push_back(double{traces[i].highest()} - double{traces[i].lowest()});
    return fittingSensitivity(median(spans), usualRoom * layout.rowSpacing);
}

int run(const PlotOptions& options) {
    setQuiet(options.signals.quiet);
    const std::string kind = Canvas::kindOf(options.output);
    if (kind.empty()) {
        complain("--output " + options.output + ": the name must end in .svg, .png or .pdf");
        return exitWrongUsage;
    }
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

    const PageLayout layout(rows.rows().size());
    LongWork work("drawing " + options.file, options.signals.quiet);
    const std::vector<TraceReducer> traces = reduceTraces(rows, *range, work);
    if (traces.empty()) {
        complain(options.file + ": interrupted, nothing is drawn");
        return exitFailed;
    }
    const double sensitivity =
        options.sensitivity > 0 ? options.sensitivity : chosenSensitivity(rows, traces, layout);
    Output output;
    bool written = output.open(options.output);
    if (written) {
        Canvas canvas(kind, layout.width, layout.height, output);
        drawPage(canvas, layout,
                 {&*recording, &rows, &traces, *range, &options.signals, sensitivity});
        written = canvas.finish() && output.commit();
    }
    if (!written)
        complain(output.error());
    return written ? exitWell : exitFailed;
}

} // namespace

void addPlotCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<PlotOptions>();
    CLI::App* command = app.add_subcommand("plot", "Draw a page of channels or derivations");
    command->add_option("FILE", options->file, "Recording")->required();
    command->add_option("-o,--output", options->output, "Picture to write: .svg, .png or .pdf")
        ->required();
    command
        ->add_option("--sensitivity", options->sensitivity,
                     "Microvolts per millimetre (default: one at which the traces fit)")
        ->check(positiveFault);
    addSignalOptions(*command, options->signals);
    command->callback([options, &exitCode] { exitCode = run(*options); });
}

} // namespace kvsig::tool
