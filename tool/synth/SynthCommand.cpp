#include "kvsig/util/NumberText.h"
#include "kvsig/util/OutputFile.h"
#include "kvsig/util/Text.h"
#include "tool/Command.h"
#include "tool/FileNames.h"
#include "tool/LongWork.h"
#include "tool/TimeOption.h"
#include "tool/Words.h"
#include "tool/synth/RecordingPlan.h"
#include "tool/synth/SynthOptions.h"
#include "tool/synth/SynthRecording.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdint>
#include <memory>
#include <string>
#include <system_error>

namespace kvsig::tool {
namespace {

/// The options as they were typed.
struct SynthArguments {
    SynthOptions options;
    std::string output;
    std::string format; ///< empty: by the output's ending
    std::string duration = "60";
    std::string recordDuration = "1";
    std::string rates;
    std::string seed = "1";
    std::string start = "15.03.24 22.30.00";
    bool quiet = false;
};

[[noreturn]] void refuse(const std::string& option, const std::string& value,
                         const std::string& why) {
    throw CLI::ValidationError(option + " \"" + value + "\"", why);
}

double timeOf(const std::string& option, const std::string& text) {
    double seconds = 0;
    if (!readTime(text, seconds))
        refuse(option, text, "is no time: give seconds or [d:]h:m:s");
    return seconds;
}

std::vector<RateGroup> rateGroupsOf(const std::string& text) {
    std::vector<RateGroup> groups;
    for (const std::string& word : splitWords(text, ',')) {
        const std::size_t mark = word.find('x');
        RateGroup group;
        if (mark == std::string::npos || !wholeDouble(word.substr(0, mark), group.count) ||
            !wholeDouble(word.substr(mark + 1), group.rate))
            refuse("--rates", text,
                   "\"" + word + "\" is not of the form COUNTxHZ, as in 8x512,4x1");
        groups.push_back(group);
    }
    if (groups.empty())
        refuse("--rates", text, "names no signal");
    return groups;
}

EdfKind kindOf(const SynthArguments& arguments) {
    const std::string format =
        arguments.format.empty() ? endingAmong(arguments.output, {"bdf"}) : arguments.format;
    if (format == "bdf")
        return EdfKind::bdf;
    return format == "edf" ? EdfKind::edf : EdfKind::edfPlus;
}

std::uint64_t seedOf(const std::string& text) {
    std::uint64_t seed = 0;
    const char* const textEnd = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), textEnd, seed);
    if (error != std::errc() || end != textEnd)
        refuse("--seed", text, "is no whole number from 0 to 2^64 - 1");
    return seed;
}

SynthOptions optionsOf(const SynthArguments& arguments) {
    SynthOptions options = arguments.options;
    options.kind = kindOf(arguments);
    options.seed = seedOf(arguments.seed);
    options.duration = timeOf("--duration", arguments.duration);
    options.recordDuration = timeOf("--record-duration", arguments.recordDuration);
    const auto start = readStartTime(arguments.start);
    if (!start)
        refuse("--start", arguments.start, "is no date and time: give \"dd.mm.yy hh.mm.ss\"");
    options.start = *start;
    if (!arguments.rates.empty())
        options.rates = rateGroupsOf(arguments.rates);
    return options;
}

bool writeRecording(const RecordingPlan& plan, const std::string& header,
                    const SynthArguments& arguments, const SynthOptions& options,
                    std::string& reason) {
    OutputFile file;
    file.open(arguments.output.c_str());
    file.write(header);
    LongWork work("writing " + arguments.output, arguments.quiet);
    SynthRecording recording(plan, options);
    for (std::int64_t i = 0; i < plan.header.records && file.error().empty(); ++i) {
        if (!work.goOn(static_cast<double>(i), static_cast<double>(plan.header.records))) {
            reason = "interrupted, not written";
            return false;
        }
        const auto bytes = recording.nextRecord();
        file.write(bytes.data(), bytes.size());
    }
    const bool done = file.commit();
    reason = file.error();
    return done;
}

int run(const SynthArguments& arguments) {
    const SynthOptions options = optionsOf(arguments);
    std::string reason;
    const auto plan = planRecording(options, reason);
    const std::string header = plan ? headerBytes(plan->header, reason) : std::string();
    if (header.empty())
        throw CLI::ValidationError(reason);
    if (writeRecording(*plan, header, arguments, options, reason))
        return exitWell;
    complain(arguments.output + ": " + reason);
    return exitFailed;
}

} // namespace

void addSynthCommand(CLI::App& app, int& exitCode) {
    CLI::App* command =
        app.add_subcommand("synth", "Make a believable recording, the same for the same options");
    command->footer("Examples:\n"
                    "  kvsig synth -o night.edf\n"
                    "  kvsig synth -o sleep.bdf --duration 0:10:00 --rate 512 --mains 50");
    const auto arguments = std::make_shared<SynthArguments>();
    SynthOptions& options = arguments->options;

    command->add_option("-o,--output", arguments->output, "The file to write")
        ->type_name("FILE")
        ->required();
    command
        ->add_option("--format", arguments->format,
                     "Kind of file; edf+c has annotations (default: bdf for .bdf, else edf+c)")
        ->transform(CLI::IsMember({"edf", "edf+c", "bdf"}, CLI::ignore_case));
    command
        ->add_option("--duration", arguments->duration,
                     "Seconds or [d:]h:m:s, rounded up to whole records")
        ->type_name("T")
        ->capture_default_str();
    auto* channels =
        command
            ->add_option("--channels", options.channels,
                         "Channels: 19 of the 10-20 system, A1, A2, ECG, then 10-10 places")
            ->type_name("N")
            ->capture_default_str();
    auto* rate = command->add_option("--rate", options.rate, "Samples per second")
                     ->type_name("HZ")
                     ->capture_default_str();
    command->add_option("--record-duration", arguments->recordDuration, "Length of a data record")
        ->type_name("S")
        ->capture_default_str();
    auto* mixed = command->add_flag("--mixed", options.mixed,
                                    "Mixed rates: the ECG at half the rate, breathing at an "
                                    "eighth, SpO2 and temperature at 1 Hz");
    command
        ->add_option("--rates", arguments->rates,
                     "Mixed rates in full, as in 8x512,8x256,6x64,4x1: EEG from 100 Hz on, "
                     "breathing from 4 Hz on, vital signs below")
        ->type_name("NxHZ,...")
        ->excludes(channels)
        ->excludes(rate)
        ->excludes(mixed);
    command->add_option("--seed", arguments->seed, "Another number makes another recording")
        ->type_name("N")
        ->capture_default_str();
    command->add_option("--start", arguments->start, "Start of the recording, dd.mm.yy hh.mm.ss")
        ->type_name("TIME")
        ->capture_default_str();
    command
        ->add_option("--mains", options.mains,
                     "Frequency of the mains hum; 0, or half the rate and more, is none")
        ->type_name("HZ")
        ->capture_default_str();
    command->add_flag("-q,--quiet", arguments->quiet, "No progress on a terminal");
    command->callback([arguments, &exitCode] { exitCode = run(*arguments); });
}

} // namespace kvsig::tool
