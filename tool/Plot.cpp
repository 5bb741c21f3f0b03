#include "tool/Command.h"
#include "tool/FileNames.h"
#include "tool/RowStream.h"
#include "tool/Selection.h"
#include "tool/plot/Canvas.h"
#include "tool/plot/EventMarks.h"
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
    std::string output;
    std::string format;     ///< empty: by the output's ending
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
        if (hasCommonScale(rows.rows()[i]) && !traces[i].empty())
            spans.push_back(double{traces[i].highest()} - double{traces[i].lowest()});
    return fittingSensitivity(median(spans), usualRoom * layout.rowSpacing);
}

bool drawSelection(const Selection& selection, const std::string& format,
                   const PlotOptions& options, Output& output, LongWork& work) {
    const Rows& rows = selection.rows;
    const double rate = selection.recording.reader->samplingRate();
    const double start = static_cast<double>(selection.range.first) / rate;
    const double duration = static_cast<double>(selection.range.length()) / rate;
    // Where the traces stand from left to right does not depend on what is above them.
    const EventMarks events = placeEvents(eventsOf(selection.recording), start, duration,
                                          PageLayout(rows.rows().size()).traceWidth());
    const PageLayout layout(rows.rows().size(), events.lanes * eventLaneHeight);
    const std::vector<TraceReducer> traces = reduceTraces(rows, selection.range, work);
    if (traces.empty())
        return false;
    const double sensitivity =
        options.sensitivity > 0 ? options.sensitivity : chosenSensitivity(rows, traces, layout);
    Canvas canvas(format, layout.width, layout.height, output);
    drawPage(canvas, layout,
             {&selection.recording, &rows, &traces, &events, selection.range, &options.signals,
              sensitivity});
    return canvas.finish();
}

std::string formatOf(const PlotOptions& options) {
    if (!options.format.empty())
        return options.format;
    const std::string ending = endingAmong(options.output, {"svg", "png", "pdf"});
    if (ending.empty() && !namesFolder(options.output))
        throw CLI::ValidationError("--output " + options.output,
                                   "the name must end in .svg, .png or .pdf, or --format tell "
                                   "which it is");
    return ending.empty() ? "png" : ending;
}

int run(const PlotOptions& options) {
    const std::string format = formatOf(options);
    SelectionJob job;
    job.signals = &options.signals;
    job.output = options.output;
    job.ending = format;
    job.doing = "drawing";
    job.keepsGaps = true;
    job.write = [&](const Selection& selection, Output& output, LongWork& work) {
        return drawSelection(selection, format, options, output, work);
    };
    return runForEachFile(job);
}

} // namespace

void addPlotCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<PlotOptions>();
    CLI::App* command = app.add_subcommand("plot", "Draw a page of channels or derivations");
    command->footer("Examples:\n"
                    "  kvsig plot night.edf -o page.png --montage \"Double banana\" --to 10\n"
                    "  kvsig plot night.edf -o page.svg --channels Fp1-F7,F7-T3 --from 0:20 --to "
                    "0:30 \\\n"
                    "    --low-filter 1 --high-filter 70 --notch 50 --sensitivity 7");
    command
        ->add_option(
            "-o,--output", options->output,
            "Picture to write, .svg, .png or .pdf, or folder for several; one that ends in / is "
            "made")
        ->type_name("PATH")
        ->group("Output")
        ->required();
    command
        ->add_option("--format", options->format,
                     "Kind of picture (default: by the output's ending, png in a folder)")
        ->check(CLI::IsMember({"svg", "png", "pdf"}))
        ->group("Output");
    command
        ->add_option("--sensitivity", options->sensitivity,
                     "Microvolts per millimetre (default: one at which the traces fit)")
        ->check(positiveFault)
        ->type_name("UV")
        ->group("Output");
    addSignalOptions(*command, options->signals);
    command->callback([options, &exitCode] { exitCode = run(*options); });
}

} // namespace kvsig::tool
