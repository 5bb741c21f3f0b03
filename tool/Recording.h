#pragma once

#include "kvsig/kernel/DataReader.h"
#include "kvsig/kernel/ReaderPtr.h"
#include "tool/HeldSamples.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvsig::tool {

/// A recording, or a pair of two, that a command has opened.
struct Recording {
    std::string path;
    ReaderPtr reader;

    /// The reader that holds a channel and the channel's number there: of a pair, a member. Sample
    /// numbers are those of the common rate.
    struct Place {
        DataReader* reader = nullptr;
        int channel = -1;
        HeldSamples held;

        /// The file's own integers of `first`..`last`; zeros where it has none.
        void readCounts(long first, long last, std::int32_t* out) const;
        /// Samples that the file holds.
        [[nodiscard]] long storedSamples() const {
            return held.firstShown(reader->storedSampleCount());
        }
    };
    [[nodiscard]] Place placeOf(int channel) const;
    /// The reader itself, or both members of a pair.
    [[nodiscard]] std::vector<DataReader*> members() const;
    [[nodiscard]] bool isPair() const { return members().size() > 1; }

    /// A sample's number at the common rate, or a number of samples. A pair counts its samples, and
    /// numbers those of its anchors, at its first recording's own rate, which may be the slower.
    [[nodiscard]] long atCommonRate(long samples) const;
    /// Samples that the commands show: what the file holds, not what the kernel counts. Of a pair
    /// the first recording's, at the common rate.
    [[nodiscard]] long storedSamples() const;
    /// The finding that makes samples or times meaningless; null when there is none.
    [[nodiscard]] const OpenFinding* unusable() const;
};

/// The type number of a type name, or of two joined by '+' for a pair; empty and a complaint when
/// there is no such type. An empty name gives 0: detect.
[[nodiscard]] std::optional<int> typeFromName(const std::string& name);

/// A warning and the file that it is about.
struct Warning {
    std::string file;
    std::string text;
};

/// What is known of a recording that does not open beside the reason: its readers' warnings up to
/// there, which explain numbers that the reason speaks of; the first few.
[[nodiscard]] std::vector<Warning> warningsOfRefusal(const std::string& path, int type);

/// Opens a recording, says its warnings and complains when it does not open.
[[nodiscard]] std::optional<Recording> openRecording(const std::string& path, int type);

/// The same for a command that needs the samples: a recording whose samples or times mean nothing
/// is refused.
[[nodiscard]] std::optional<Recording> openUsableRecording(const std::string& path, int type);

/// True with a complaint when writing `output` would replace the recording itself.
[[nodiscard]] bool isRecordingItself(const Recording& recording, const std::string& output);

} // namespace kvsig::tool
