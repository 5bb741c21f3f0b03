#include "support/Testing.h"

#include <map>
#include <set>

namespace kvsig::test {
namespace {

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
};

TEST(Architecture, NoArrowRunsUpward) {
    const Includes includes = readIncludes();
    ASSERT_GT(includes.size(), 50U) << "the sources were not found";
    for (const auto& [file, targets] : includes)
        for (const std::string& target : targets) {
            const std::string from = roomOf(file);
            const std::string to = roomOf(target);
            EXPECT_TRUE(from == to || from == "all" || allowedRooms.at(from).contains(to))
                << file << " includes " << target;
        }
}

// Files that include only what is left out are left out; in the end a circle is what remains.
TEST(Architecture, NoFileIncludesInACircle) {
    Includes left = readIncludes();
    while (std::erase_if(left, [&left](const auto& file) {
               return std::none_of(
                   file.second.begin(), file.second.end(),
                   [&left](const std::string& next) { return left.contains(next); });
           }) > 0)
        continue;
    for (const auto& [file, targets] : left)
        ADD_FAILURE() << file << " is in a circle or includes one";
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
} // namespace kvsig::test
