#include "tool/Recording.h"

#include "kvsig/registry/FormatTable.h"
#include "kvsig/registry/FrontDoor.h"
#include "tool/Words.h"

#include <algorithm>
#include <filesystem>

namespace kvsig::tool {

using Severity = OpenFinding::Severity;

namespace {

// Commands run through a recording once: a few pages do, however wide its frames are.
void limitPages(IDataReader& reader) {
    constexpr std::int64_t mostBytes = std::int64_t{16} << 20;
    const std::int64_t pageBytes =
        std::int64_t{reader.getPagePts()} * reader.channelCount() * reader.bytesPerSample();
    const std::int64_t pages = mostBytes / std::max<std::int64_t>(pageBytes, 1);
    reader.setMaxPages(static_cast<short>(std::clamp<std::int64_t>(pages, 1, 15)));
}

} // namespace

const OpenFinding* Recording::unusable() const {
    const auto& findings = details->openFindings();
    const auto found = std::find_if(findings.begin(), findings.end(), [](const OpenFinding& f) {
        return f.severity == Severity::unusable;
    });
    return found == findings.end() ? nullptr : &*found;
}

std::optional<int> typeFromName(const std::string& name) {
    if (name.empty())
        return 0;
    if (const FormatRow* row = formatByName(name))
        return row->type;
    std::string known;
    for (const FormatRow& row : readableFormats())
        known += (known.empty() ? "" : ", ") + std::string(row.typeName());
    complain("--type " + name + ": no such type; this build reads " + known);
    return std::nullopt;
}

std::optional<Recording> openRecording(const std::string& path, int type, std::string* reason) {
    std::string error;
    Recording recording{path, openReader(path.c_str(), type, &error), nullptr};
    if (!recording.reader) {
        complain(error);
        if (reason)
            *reason = error;
        return std::nullopt;
    }
    recording.details = dynamic_cast<DataReader*>(recording.reader.get());
    for (const OpenFinding& finding : recording.details->openFindings())
        if (finding.severity == Severity::warning)
            complain(path + ": " + finding.text);
    return recording;
}

std::optional<Recording> openUsableRecording(const std::string& path, int type) {
    std::optional<Recording> recording = openRecording(path, type);
    if (!recording)
        return std::nullopt;
    limitPages(*recording->reader);
    if (const OpenFinding* finding = recording->unusable()) {
        complain(path + ": " + finding->text);
        return std::nullopt;
    }
    return recording;
}

bool isRecordingItself(const Recording& recording, const std::string& output) {
    std::error_code ignored;
    if (output.empty() || !std::filesystem::equivalent(recording.path, output, ignored))
        return false;
    complain(recording.path + ": --output " + output + " is the recording itself");
    return true;
}

} // namespace kvsig::tool
