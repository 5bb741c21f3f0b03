#include "kvsig/montage/MontageFiles.h"

#include "kvsig/montage/MontageSearch.h"
#include "kvsig/montage/MontageText.h"
#include "kvsig/montage/ShippedMontages.h"
#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/StandardFolders.h"
#include "kvsig/util/Text.h"
#include "kvsig/util/TextFile.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <unordered_set>
#include <utility>

namespace kvsig {
namespace {

namespace fs = std::filesystem;

std::optional<std::string> hostDirectory; // never set: none, and all the other places
std::string hostFile;
std::istream* hostStream = nullptr;

enum class Form { templates, sections, byContent, builtIn };

/// A file to look at, or the stream in its place, or what is built in.
struct Candidate {
    Form form = Form::sections;
    std::string path;
    std::istream* stream = nullptr;
};

bool isCurrentFolderAlone() { return hostDirectory && hostDirectory->empty(); }

std::vector<std::string> folders() {
    if (isCurrentFolderAlone())
        return {""};
    std::vector<std::string> all;
    if (hostDirectory)
        all.push_back(*hostDirectory);
    all.emplace_back("");
    if (const std::string user = userConfigFolder(); !user.empty())
        all.push_back(user + "/kvsig");
    // Beside the library wherever it was moved to, and where it was meant to be installed.
    if (const std::string library = libraryFolder(); !library.empty()) {
        all.push_back(library + "/" KVSIG_SHARE_FROM_LIBRARY);
        all.push_back(library + "/../share/kvsig");
    }
    all.emplace_back(KVSIG_SHARE_FOLDER);
    return all;
}

// The templates of all places, then the INI files of all places.
std::vector<Candidate> candidates() {
    const std::vector<std::string> places = folders();
    std::vector<Candidate> all;
    const auto add = [&](Form form, const char* name) {
        for (const std::string& folder : places)
            all.push_back({form, (fs::path(folder) / name).string()});
    };
    if (!hostFile.empty())
        all.push_back({Form::byContent, hostFile});
    add(Form::templates, szINIMontageFileXML);
    if (!isCurrentFolderAlone())
        all.push_back({Form::builtIn, "the built-in montages"});
    if (hostStream)
        all.push_back({Form::sections, {}, hostStream});
    else
        add(Form::sections, szINIMontageFile);
    return all;
}

bool isTemplates(const Candidate& file, std::string_view text) {
    return file.form == Form::templates || file.form == Form::builtIn ||
           (file.form == Form::byContent && isXML(text));
}

void logUnreadable(const Candidate& file, const std::string& reason) {
    logMessage(logWarning, "SourceMontage: " + file.path + ": " + reason);
}

// A file that is not there is no fault.
std::optional<std::string> textOf(const Candidate& file) {
    if (file.form == Form::builtIn)
        return std::string(shippedMontages());
    std::error_code ignored;
    if (!fs::exists(file.path, ignored))
        return std::nullopt;
    std::string reason;
    auto text = readTextFile(file.path.c_str(), mostMontageFileBytes, &reason);
    if (!text)
        logUnreadable(file, reason);
    return text;
}

std::optional<MontageContent> findIn(const Candidate& file, const std::string& name) {
    if (file.stream)
        return sectionEntries(*file.stream, name);
    const std::optional<std::string> text = textOf(file);
    if (!text)
        return std::nullopt;
    if (!isTemplates(file, *text)) {
        std::istringstream stream(*text);
        return sectionEntries(stream, name);
    }
    std::string reason;
    auto content = templateContent(*text, name, &reason);
    if (!reason.empty())
        logUnreadable(file, reason);
    return content;
}

struct FoundNames {
    bool areSections = false;
    std::vector<std::string> names;
};

FoundNames namesIn(const Candidate& file) {
    if (file.stream)
        return {true, sectionNames(*file.stream)};
    const std::string text = textOf(file).value_or("");
    if (isTemplates(file, text))
        return {false, templateNames(text)};
    std::istringstream stream(text);
    return {true, sectionNames(stream)};
}

/// Names in the order found, without those of montages that no search can reach any more.
class NameList {
  public:
    void add(std::string name, bool isSection) {
        const std::string folded = lowerCase(name);
        if (name.empty() || m_names.size() >= mostMontageNames || m_sections.contains(folded) ||
            !m_exact.insert(name).second)
            return;
        if (isSection) // it answers to every spelling
            m_sections.insert(folded);
        m_names.push_back(std::move(name));
    }
    std::vector<std::string> take() { return std::move(m_names); }

  private:
    std::unordered_set<std::string> m_exact, m_sections;
    std::vector<std::string> m_names;
};

} // namespace

void SetMontageDirectory(const char* path) {
    hostDirectory = path ? std::optional<std::string>(path) : std::nullopt;
}

void SetMontageFile(const char* path) { hostFile = viewOf(path); }
void SetMontageStream(std::istream* stream) { hostStream = stream; }

std::vector<std::string> MontageNames() {
    NameList list;
    for (const Candidate& file : candidates()) {
        FoundNames found = namesIn(file);
        for (std::string& name : found.names)
            list.add(std::move(name), found.areSections);
    }
    return list.take();
}

std::optional<MontageContent> findMontage(const std::string& name) {
    for (const Candidate& file : candidates())
        if (auto content = findIn(file, name))
            return content;
    return std::nullopt;
}

} // namespace kvsig
