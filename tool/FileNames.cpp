#include "tool/FileNames.h"

#include "kvsig/util/Text.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <map>
#include <string_view>

namespace kvsig::tool {

std::string endingAmong(const std::string& path, std::initializer_list<const char*> endings) {
    for (const char* ending : endings) {
        const std::string tail = std::string(".") + ending;
        if (path.size() > tail.size() &&
            equalNoCase(std::string_view(path).substr(path.size() - tail.size()), tail))
            return ending;
    }
    return {};
}

bool namesFolder(const std::string& output) {
    std::error_code ignored;
    return output.ends_with('/') || std::filesystem::is_directory(output, ignored);
}

std::vector<std::string> outputPaths(const std::vector<std::string>& files,
                                     const std::string& output, const std::string& ending) {
    if (output.empty() || output == "-")
        return std::vector<std::string>(files.size());
    if (!namesFolder(output)) {
        if (files.size() > 1)
            throw CLI::ValidationError("--output " + output,
                                       "several files need a folder: an existing one, or a name "
                                       "that ends in /");
        return {output};
    }
    std::vector<std::string> paths;
    std::map<std::string, std::string> origins;
    for (const std::string& file : files) {
        const std::string base = std::filesystem::path(file).stem().string() + "." + ending;
        paths.push_back((std::filesystem::path(output) / base).string());
        const auto [origin, isNew] = origins.emplace(paths.back(), file);
        if (!isNew)
            throw CLI::ValidationError("--output " + output, origin->second + " and " + file +
                                                                 " would both be written to " +
                                                                 paths.back());
    }
    return paths;
}

} // namespace kvsig::tool
