#pragma once

#include <optional>
#include <string>

namespace kvsig {

/// The attribute text of an XML layout: root "Layout" with "FileInfo" and "Patient" (an attribute
/// per key), "ChannelMap" with "Channel" elements (Name, Number) and "SampleTimes" with
/// "SampleTime" elements (Sample, Time). Empty with a sentence in `reason` when the file is none.
[[nodiscard]] std::optional<std::string> readXmlLayout(const char* path, std::string& reason);

/// Whether a file is an XML document with the root "Layout".
[[nodiscard]] bool isXmlLayoutFile(const char* path);

} // namespace kvsig
