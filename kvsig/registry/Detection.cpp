#include "kvsig/registry/Detection.h"

#include "kvsig/registry/types/DataReaderManager.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/registry/Layout.h"
#include "kvsig/registry/ReadableFormats.h"
#include "kvsig/registry/XmlLayout.h"
#include "kvsig/util/File.h"
#include "kvsig/util/FilePattern.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <set>

namespace kvsig {
namespace {

struct ContentTest {
    ReaderType type;
    bool (*isFileType)(const char* path);
};

const std::vector<ContentTest>& contentTests() {
    static const std::vector<ContentTest> tests = [] {
        std::vector<ContentTest> all;
        for (const ReadableFormat& format : readableFormats())
            if (format.isFileType)
                all.push_back({format.type, format.isFileType});
        all.push_back({layoutType, isLayoutFile});
        all.push_back({xmlLayoutType, isXmlLayoutFile});
        return all;
    }();
    return tests;
}

bool knowsContent(ReaderType type, const char* path) {
    return std::any_of(contentTests().begin(), contentTests().end(), [&](const ContentTest& test) {
        return test.type == type && test.isFileType(path);
    });
}

// "*.*" or "b*" fit too much to say anything about a file.
bool isTelling(std::string_view pattern) {
    const std::string_view ending = pattern.substr(std::min(pattern.rfind('.'), pattern.size()));
    return pattern.find('*') == std::string_view::npos ||
           std::any_of(ending.begin(), ending.end(), isLetterOrDigit);
}

// Formats that are not built here and whose pattern the name fits.
std::vector<const DRFactory*> unreadableByName(const char* path) {
    std::vector<const DRFactory*> fitting;
    for (const DRFactory* factory : dataReaderManager().factories())
        if (!KrnlIsReadable(factory->type) && isTelling(viewOf(factory->pattern)) &&
            fitsFilePattern(baseName(path), viewOf(factory->pattern)))
            fitting.push_back(factory);
    return fitting;
}

int detectPair(const char* path) {
    const std::string both(path);
    const std::size_t star = both.find('*');
    if (star == std::string::npos)
        return noReaderType;
    const int first = DetectFileType(both.substr(0, star).c_str());
    const int second = DetectFileType(both.substr(star + 1).c_str());
    const bool canPair = first > 0 && second > 0 && !isPairType(first) && !isPairType(second);
    return canPair ? pairType(first, second) : noReaderType;
}

} // namespace

int DetectFileType(const char* path) {
    if (!File().open(path))
        return path ? detectPair(path) : noReaderType;
    for (const DRFactory* factory : dataReaderManager().factories())
        if (fitsFilePattern(baseName(path), viewOf(factory->pattern)) &&
            knowsContent(factory->type, path))
            return factory->type;
    for (const ContentTest& test : contentTests())
        if (test.isFileType(path))
            return test.type;
    const auto fitting = unreadableByName(path);
    const bool one = !fitting.empty() &&
                     std::all_of(fitting.begin(), fitting.end(), [&](const DRFactory* factory) {
                         return factory->type == fitting.front()->type;
                     });
    return one ? fitting.front()->type : noReaderType;
}

std::string undetectedReason(const char* path) {
    std::string reason;
    if (!File().open(path, &reason))
        return reason;
    reason = "not a recording of a known format: its content is none of those that this build "
             "tells apart";
    std::string names;
    std::set<ReaderType> told;
    for (const DRFactory* factory : unreadableByName(path))
        if (told.insert(factory->type).second)
            names += (names.empty() ? "" : ", ") + typeNameOf(factory->type);
    if (!names.empty())
        reason += "; by its name it may be " + names + ", which are not built";
    return reason;
}

} // namespace kvsig
