#include "tool/Recording.h"

#include "kvsig/readers/SyncReader.h"
#include "kvsig/registry/Allocation.h"
#include "kvsig/registry/FrontDoor.h"
#include "kvsig/registry/types/FileTypes.h"
#include "tool/HeldPair.h"
#include "tool/Words.h"

#include <algorithm>
#include <filesystem>

namespace kvsig::tool {

using Severity = OpenFinding::Severity;

namespace {

// Of a reader, or of both members of a pair.
std::vector<DataReader*> readersOf(IDataReader* reader) {
    if (auto* pair = dynamic_cast<SyncReader*>(reader))
        return {dynamic_cast<DataReader*>(pair->first()),
                dynamic_cast<DataReader*>(pair->second())};
    return {dynamic_cast<DataReader*>(reader)};
}

// Commands run through a recording once: a few pages do, however wide its frames are.
void limitPages(IDataReader& reader) {
    constexpr std::int64_t mostBytes = std::int64_t{16} << 20;
    const std::int64_t pageBytes =
        std::int64_t{reader.getPagePts()} * reader.channelCount() * reader.bytesPerSample();
    const std::int64_t pages = mostBytes / std::max<std::int64_t>(pageBytes, 1);
    reader.setMaxPages(static_cast<short>(std::clamp<std::int64_t>(pages, 1, 15)));
}

} // namespace

void Recording::Place::readCounts(long first, long last, std::int32_t* out) const {
    if (!held.isSlower()) {
        reader->getRawData(channel, first, last, out);
        return;
    }
    std::vector<std::int32_t> own(static_cast<std::size_t>(held.at(last) - held.at(first) + 1));
    reader->getRawData(channel, held.at(first), held.at(last), own.data());
    held.spread(own.data(), first, last, [out](long i, std::int32_t count) { out[i] = count; });
}

Recording::Place Recording::placeOf(int channel) const {
    const std::vector<DataReader*> all = members();
    const int first = all.front()->channelCount();
    const bool ofSecond = all.size() > 1 && channel >= first;
    DataReader* member = ofSecond ? all[1] : all.front();
    return {member, ofSecond ? channel - first : channel,
            HeldSamples(member->samplingRate(), reader->samplingRate())};
}

std::vector<DataReader*> Recording::members() const { return readersOf(reader.get()); }

long Recording::atCommonRate(long samples) const { return placeOf(0).held.firstShown(samples); }

long Recording::storedSamples() const { return placeOf(0).storedSamples(); }

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

namespace {

std::vector<Warning> warningsOf(const std::vector<DataReader*>& readers) {
    std::vector<Warning> warnings;
    for (const DataReader* reader : readers)
        for (const OpenFinding& finding : reader->openFindings())
            if (finding.severity == Severity::warning)
                warnings.push_back({reader->filePath(), finding.text});
    return warnings;
}

void say(const std::vector<Warning>& warnings) {
    for (const auto& [file, text] : warnings)
        complain(std::string(file).append(": ").append(text));
}

} // namespace

std::vector<Warning> warningsOfRefusal(const std::string& path, int type) {
    const int found = type != noReaderType ? type : DetectFileType(path.c_str());
    const UnheldReader reader(_KrnlAllocReaderEx(found, path.c_str()));
    if (!reader)
        return {};
    const std::vector<DataReader*> readers = readersOf(reader.get());
    // A failed open leaves its findings behind.
    const bool opens = std::all_of(readers.begin(), readers.end(), [](DataReader* each) {
        return each->open(std::string(each->filePath()).c_str());
    });
    if (opens)
        return {};
    std::vector<Warning> warnings = warningsOf(readers);
    constexpr std::size_t most = 4; // a header that is off has one for each signal
    if (warnings.size() > most + 1) {
        const std::string rest = std::to_string(warnings.size() - most);
        warnings.resize(most);
        warnings.push_back({warnings.front().file, rest + " more warnings"});
    }
    return warnings;
}

std::optional<Recording> openRecording(const std::string& path, int type) {
    std::string error;
    Recording recording{path, openReader(path.c_str(), type, &error)};
    if (!recording.reader) {
        complain(error);
        say(warningsOfRefusal(path, type));
        return std::nullopt;
    }
    say(warningsOf(recording.members()));
    return recording;
}

std::optional<Recording> openUsableRecording(const std::string& path, int type) {
    std::optional<Recording> recording = openRecording(path, type);
    if (!recording)
        return std::nullopt;
    recording->reader = withHeldSamples(recording->reader);
    if (!recording->reader) {
        complain(path + ": a file of the pair cannot be opened again");
        return std::nullopt;
    }
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
