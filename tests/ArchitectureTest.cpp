#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kvsig {
namespace {

namespace fs = std::filesystem;

using Includes = std::map<std::string, std::vector<std::string>>;

// Every source of the library by its path ("kvsig/util/Text.h") with what it includes of it.
Includes readIncludes() {
    const fs::path root = KVSIG_SOURCE_DIR;
    const std::string start = "#include \"";
    Includes includes;
    for (const auto& entry : fs::recursive_directory_iterator(root / "kvsig")) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp")
            continue;
        auto& found = includes[fs::relative(entry.path(), root).generic_string()];
        std::ifstream stream(entry.path());
        for (std::string text; std::getline(stream, text);)
            if (text.starts_with(start + "kvsig/"))
                found.push_back(text.substr(start.size(), text.rfind('"') - start.size()));
    }
    return includes;
}

std::string roomOf(const std::string& file) {
    for (const char* room : {"util", "filters", "montage/names", "registry/types", "kernel",
                             "montage", "readers", "registry"})
        if (file.starts_with("kvsig/" + std::string(room) + "/"))
            return room;
    return "all";
}

// The rooms that a room may look into besides itself.
const std::map<std::string, std::set<std::string>> allowedRooms{
    {"util", {}},
    {"filters", {"util"}},
    {"montage/names", {"util"}},
    {"registry/types", {"util"}},
    {"kernel", {"util", "montage/names", "registry/types"}},
    {"montage", {"util", "filters", "montage/names", "kernel"}},
    {"readers", {"util", "filters", "montage/names", "kernel", "montage"}},
    {"registry",
     {"util", "filters", "montage/names", "registry/types", "kernel", "montage", "readers"}},
    {"all",
     {"util", "filters", "montage/names", "registry/types", "kernel", "montage", "readers",
      "registry"}},
};

TEST(Architecture, NoArrowRunsUpward) {
    const Includes includes = readIncludes();
    ASSERT_GT(includes.size(), 50U) << "the sources were not found";
    for (const auto& [file, targets] : includes)
        for (const std::string& target : targets) {
            const std::string from = roomOf(file);
            const std::string to = roomOf(target);
            EXPECT_TRUE(from == to || allowedRooms.at(from).contains(to))
                << file << " includes " << target;
        }
}

bool reaches(const Includes& includes, const std::string& from, const std::string& goal,
             std::set<std::string>& seen) {
    const auto found = includes.find(from);
    if (found == includes.end() || !seen.insert(from).second)
        return false;
    return std::any_of(found->second.begin(), found->second.end(), [&](const std::string& next) {
        return next == goal || reaches(includes, next, goal, seen);
    });
}

TEST(Architecture, NoFileIncludesInACircle) {
    const Includes includes = readIncludes();
    for (const auto& [file, targets] : includes) {
        std::set<std::string> seen;
        EXPECT_FALSE(reaches(includes, file, file, seen)) << file;
    }
}

// Conditional compilation stays in the platform's own files.
TEST(Architecture, PlatformConditionsStayInTheirFiles) {
    const std::set<std::string> platformFiles{"kvsig/util/Com.h", "kvsig/util/Export.h",
                                              "kvsig/util/WideLoops.h"};
    for (const auto& [file, targets] : readIncludes()) {
        if (platformFiles.contains(file))
            continue;
        std::ifstream stream(fs::path(KVSIG_SOURCE_DIR) / file);
        for (std::string text; std::getline(stream, text);)
            EXPECT_FALSE(text.starts_with("#if")) << file << ": " << text;
    }
}

} // namespace
} // namespace kvsig
