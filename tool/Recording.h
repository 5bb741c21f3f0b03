#pragma once

#include "kvsig/kernel/DataReader.h"
#include "kvsig/kernel/ReaderPtr.h"

#include <optional>
#include <string>

namespace kvsig::tool {

/// A recording that a command has opened.
struct Recording {
    std::string path;
    ReaderPtr reader;
    DataReader* details = nullptr; ///< the same object: what stands above the common interface

    /// Samples that the commands show: what the file holds, not what the kernel counts.
    [[nodiscard]] long storedSamples() const { return details->storedSampleCount(); }
    /// The finding that makes samples or times meaningless; null when there is none.
    [[nodiscard]] const OpenFinding* unusable() const;
};

/// The type number of a type name; empty and a complaint when there is no such type. An empty name
/// gives 0: detect.
[[nodiscard]] std::optional<int> typeFromName(const std::string& name);

/// Opens a recording, says its warnings and complains when it does not open.
[[nodiscard]] std::optional<Recording> openRecording(const std::string& path, int type,
                                                     std::string* reason = nullptr);

/// The same for a command that needs the samples: a recording whose samples or times mean nothing
/// is refused.
[[nodiscard]] std::optional<Recording> openUsableRecording(const std::string& path, int type);

/// True with a complaint when writing `output` would replace the recording itself.
[[nodiscard]] bool isRecordingItself(const Recording& recording, const std::string& output);

} // namespace kvsig::tool
