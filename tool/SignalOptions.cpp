#include "tool/SignalOptions.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "tool/CommonOptions.h"
#include "tool/TimeOption.h"
#include "tool/Words.h"

#include <algorithm>
#include <cmath>

namespace kvsig::tool {
namespace {

// The sample at or after a time. Times that are sample times up to rounding keep their sample.
double sampleAt(double seconds, double rate) {
    const double exact = seconds * rate;
    const double nearest = std::round(exact);
    return std::fabs(exact - nearest) < 1e-6 * std::max(1.0, std::fabs(nearest)) ? nearest
                                                                                 : std::ceil(exact);
}

// The options are checked when they are parsed.
double secondsOf(const std::string& text, double otherwise) {
    double seconds = 0.0;
    return !text.empty() && readTime(text, seconds) ? seconds : otherwise;
}

std::string timeFault(const std::string& text) {
    double seconds = 0.0;
    return readTime(text, seconds) ? std::string()
                                   : "\"" + text + "\" is no time: give seconds or [d:]h:m:s";
}

} // namespace

std::string positiveFault(const std::string& text) {
    double value = 0.0;
    return wholeDouble(text, value) && value > 0 && std::isfinite(value)
               ? std::string()
               : "\"" + text + "\" is no number above 0";
}

void addSignalOptions(CLI::App& command, SignalOptions& options) {
    addFilesArgument(command, options.files);
    CLI::Option* channels =
        command
            .add_option("--channels", options.channels,
                        "Channels by name or #index, and derivations, as in Fp1-F7,C3-A1+A2,#3 "
                        "(default: all recorded channels)")
            ->type_name("LIST")
            ->group("Rows");
    addMontageOptions(command, options.montage);
    for (const char* option : {"--montage", "--montage-file", "--reference"})
        command.get_option(option)->group("Rows");
    for (const char* option : {"--montage", "--reference"})
        command.get_option(option)->excludes(channels);
    const auto addTime = [&command](const char* name, std::string& time, const char* text) {
        command.add_option(name, time, text)->check(timeFault)->type_name("TIME")->group("Range");
    };
    addTime("--from", options.from,
            "Start, in seconds or [d:]h:m:s from the beginning (default: the beginning)");
    addTime("--to", options.to, "End, not included (default: the end)");
    const auto addFilter = [&command](const char* name, double& hertz, const char* text) {
        command.add_option(name, hertz, text)
            ->check(positiveFault)
            ->type_name("HZ")
            ->group("Filters");
    };
    addFilter("--low-filter", options.lowFilter, "Removes slower waves (first-order high-pass)");
    addFilter("--high-filter", options.highFilter, "Removes faster waves (first-order low-pass)");
    addFilter("--notch", options.notch, "Removes the mains: about 2 Hz wide at -3 dB");
    addTypeOption(command, options.type);
    addQuietFlag(command, options.quiet);
}

std::optional<SampleRange> sampleRange(const Recording& recording, const SignalOptions& options) {
    const double rate = recording.reader->samplingRate();
    const long stored = recording.storedSamples();
    const double end = static_cast<double>(stored) / rate;
    const double from = secondsOf(options.from, 0.0);
    const double to = secondsOf(options.to, end);
    SampleRange range;
    range.first = std::max(saturate<long>(sampleAt(from, rate)), 0L);
    range.last = std::min(saturate<long>(sampleAt(to, rate) - 1.0), stored - 1);
    if (range.last < range.first) {
        // Past the end, what comes before does not matter.
        const bool pastEnd = range.first >= stored;
        complain(recording.path + ": no samples from " + shortestText(from) + " s on" +
                 (options.to.empty() || pastEnd ? "" : " and before " + shortestText(to) + " s") +
                 "; the recording lasts " + shortestText(end) + " s");
        return std::nullopt;
    }
    if (to > end + 0.5 / rate)
        remark(recording.path + ": the range " + shortestText(from) + " to " + shortestText(to) +
               " s is clipped to the recording, 0 to " + shortestText(end) + " s");
    return range;
}

bool filtersFit(const Recording& recording, const SignalOptions& options) {
    const double rate = recording.reader->samplingRate();
    for (const auto& [name, hertz] :
         {std::pair("--low-filter", options.lowFilter),
          std::pair("--high-filter", options.highFilter), std::pair("--notch", options.notch)}) {
        if (hertz <= 0 || hertz < rate / 2)
            continue;
        complain(recording.path + ": " + name + " " + shortestText(hertz) +
                 " is not below half the sampling rate, " + shortestText(rate / 2) + " Hz");
        return false;
    }
    // Nearer than this the notch would take most of what it should pass.
    constexpr double fewestWidths = 4.0;
    if (options.notch > 0 && std::min(options.notch, rate / 2 - options.notch) < fewestWidths) {
        complain(recording.path + ": --notch " + shortestText(options.notch) +
                 " is too near to 0 or to half the sampling rate, " + shortestText(rate / 2) +
                 " Hz, for its width of 2 Hz");
        return false;
    }
    return true;
}

} // namespace kvsig::tool
