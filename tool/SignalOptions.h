#pragma once

#include "tool/MontageChoice.h"
#include "tool/Recording.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

namespace kvsig::tool {

/// What export and plot are asked to show, and of which recordings.
struct SignalOptions {
    std::vector<std::string> files;
    std::optional<std::string> channels; ///< names and derivations, comma-separated; none: all
    MontageChoice montage;               ///< in place of channels
    std::string from;                    ///< times as texts; empty: from the start, to the end
    std::string to;
    double lowFilter = 0;  ///< hertz, a high-pass; 0: none
    double highFilter = 0; ///< hertz, a low-pass; 0: none
    double notch = 0;      ///< hertz; 0: none
    std::string type;
    bool quiet = false;
};

/// A check for options that take a number above 0: what is wrong with the text, or nothing.
[[nodiscard]] std::string positiveFault(const std::string& text);

void addSignalOptions(CLI::App& command, SignalOptions& options);

/// Samples to show, inclusive.
struct SampleRange {
    long first = 0;
    long last = -1;
    [[nodiscard]] long length() const { return last - first + 1; }
};

/// The asked-for range, clipped to the samples that the file holds; says so when it had to. Empty
/// with a complaint when nothing is left or a time is none. `to` is exclusive.
[[nodiscard]] std::optional<SampleRange> sampleRange(const Recording& recording,
                                                     const SignalOptions& options);

/// False with a complaint when a filter does not fit the recording's rate.
[[nodiscard]] bool filtersFit(const Recording& recording, const SignalOptions& options);

} // namespace kvsig::tool
