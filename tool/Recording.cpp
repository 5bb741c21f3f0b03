#include "tool/Recording.h"

#include "kvsig/readers/SyncReader.h"
#include "kvsig/registry/FrontDoor.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/Saturate.h"
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

Recording::Place Recording::placeOf(int channel) const {
    const std::vector<DataReader*> all = members();
    const int first = all.front()->channelCount();
    if (all.size() > 1 && channel >= first)
        return {all[1], channel - first};
    return {all.front(), channel};
}

std::vector<DataReader*> Recording::members() const {
    if (auto* pair = dynamic_cast<SyncReader*>(reader.get()))
        return {dynamic_cast<DataReader*>(pair->first()),
                dynamic_cast<DataReader*>(pair->second())};
    return {dynamic_cast<DataReader*>(reader.get())};
}

long Recording::atCommonRate(long samples) const {
    const double own = members().front()->samplingRate();
    const double common = reader->samplingRate();
    if (!isPair() || !(own > 0) || own == common)
        return samples;
    return saturate<long>(static_cast<double>(samples) * (common / own));
}

long Recording::storedSamples() const {
    return atCommonRate(members().front()->storedSampleCount());
}

const OpenFinding* Recording::unusable() const {
    for (const DataReader* member : members())
        for (const OpenFinding& finding : member->openFindings())
            if (finding.severity == Severity::unusable)
                return &finding;
    return nullptr;
}

namespace {

// 0 for an empty name too, which the look-up takes for the beginning of every name.
int knownType(const std::string& name) {
    return name.empty() ? noReaderType : KrnlGetFileType(name.c_str());
}

} // namespace

std::optional<int> typeFromName(const std::string& name) {
    if (name.empty())
        return noReaderType;
    // Before the name as a whole: some names match whatever follows them.
    if (const std::size_t plus = name.find('+'); plus != std::string::npos) {
        const int first = knownType(name.substr(0, plus));
        const int second = knownType(name.substr(plus + 1));
        if (first != noReaderType && second != noReaderType)
            return pairType(first, second);
    }
    if (const int type = knownType(name))
        return type;
    complain("--type " + name + ": no such type; 'kvsig types' lists them");
    return std::nullopt;
}

std::optional<Recording> openRecording(const std::string& path, int type, std::string* reason) {
    std::string error;
    Recording recording{path, openReader(path.c_str(), type, &error)};
    if (!recording.reader) {
        complain(error);
        if (reason)
            *reason = error;
        return std::nullopt;
    }
    for (const DataReader* member : recording.members())
        for (const OpenFinding& finding : member->openFindings())
            if (finding.severity == Severity::warning)
                complain(member->filePath() + ": " + finding.text);
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
    if (output.empty())
        return false;
    // A layout and the data file that it names are both the recording.
    std::vector<std::string> files{recording.path};
    for (const DataReader* member : recording.members())
        files.push_back(member->filePath());
    for (const std::string& file : files) {
        std::error_code ignored;
        if (!std::filesystem::equivalent(file, output, ignored))
            continue;
        complain(recording.path + ": writing " + output + " would replace the recording itself");
        return true;
    }
    return false;
}

} // namespace kvsig::tool
