#include "kvsig/registry/Detection.h"

#include "kvsig/registry/Layout.h"
#include "kvsig/registry/ReadableFormats.h"
#include "kvsig/registry/XmlLayout.h"
#include "kvsig/registry/types/DataReaderManager.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/File.h"
#include "kvsig/util/FilePattern.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

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

bool isFile(const std::string& path) { return File().open(path.c_str()); }

// The type of one file. A content test fails where there is none, so that only what goes by the
// name alone has to ask.
ReaderType typeOfFile(const char* path) {
    const std::string_view name = baseName(path);
    for (const DRFactory* factory : dataReaderManager().factories())
        if (fitsFilePattern(name, viewOf(factory->pattern)) && knowsContent(factory->type, path))
            return factory->type;
    for (const ContentTest& test : contentTests())
        if (test.isFileType(path))
            return test.type;
    if (!isFile(path))
        return noReaderType;
    const auto fitting = unreadableByName(path);
    const bool one = !fitting.empty() &&
                     std::all_of(fitting.begin(), fitting.end(), [&](const DRFactory* factory) {
                         return factory->type == fitting.front()->type;
                     });
    return one ? fitting.front()->type : noReaderType;
}

// Both paths of "a*b"; empty when there is no '*'.
std::optional<std::pair<std::string, std::string>> pairOfPaths(std::string_view path) {
    const std::size_t star = path.find('*');
    if (star == std::string_view::npos)
        return std::nullopt;
    return std::pair(std::string(path.substr(0, star)), std::string(path.substr(star + 1)));
}

std::string undetectedFile(const char* path) {
    std::string reason;
    if (!File().open(path, &reason))
        return reason;
    const std::string_view name = baseName(path);
    if (fitsFilePattern(name, "*.lay"))
        return "not a layout: it has no section FileInfo";
    if (fitsFilePattern(name, "*.kvx") && !readXmlLayout(path, reason))
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

} // namespace

int DetectFileType(const char* path) {
    const std::string file(viewOf(path));
    const auto paths = pairOfPaths(file);
    if (!paths || isFile(file))
        return typeOfFile(file.c_str());
    if (!isFile(paths->first) || !isFile(paths->second))
        return noReaderType;
    const ReaderType first = typeOfFile(paths->first.c_str());
    const ReaderType second = typeOfFile(paths->second.c_str());
    return first != noReaderType && second != noReaderType ? pairType(first, second) : noReaderType;
}

std::string undetectedReason(const char* path) {
    const std::string file(viewOf(path));
    const auto paths = isFile(file) ? std::nullopt : pairOfPaths(file);
    if (!paths)
        return file + ": " + undetectedFile(file.c_str());
    for (const std::string& half : {paths->first, paths->second})
        if (!isFile(half) || typeOfFile(half.c_str()) == noReaderType)
            return half + ": " + undetectedFile(half.c_str());
    return file + ": the two recordings cannot be paired";
}

} // namespace kvsig
