#include "kvsig/util/NeighbourFile.h"

#include "kvsig/util/File.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace kvsig {

std::string_view baseName(std::string_view path) {
    if (const std::size_t slash = path.find_last_of("/\\"); slash != std::string_view::npos)
        return path.substr(slash + 1);
    const bool drive =
        path.size() >= 2 && path[1] == ':' && isLetterOrDigit(path[0]) && !isDigit(path[0]);
    return drive ? path.substr(2) : path;
}

std::string neighbourFile(const std::string& path, std::string_view name) {
    const std::string_view base = baseName(name);
    if (base.empty())
        return {};
    const auto opens = [](const std::string& candidate) { return File().open(candidate.c_str()); };
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    std::string exact = (folder / base).string();
    if (opens(exact))
        return exact;
    std::string found;
    std::error_code failed;
    std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed)) {
        const std::string other = entry->path().filename().string();
        const std::string candidate = (folder / other).string();
        // Several such files: the first in byte order, whatever order the folder lists them in.
        if (equalNoCase(other, base) && (found.empty() || candidate < found) && opens(candidate))
            found = candidate;
    }
    return found;
}

std::string_view nameEnding(std::string_view path) {
    const std::string_view name = baseName(path);
    return name.substr(std::min(name.rfind('.'), name.size()));
}

std::string companionFile(const std::string& path, std::string_view ending) {
    const std::string_view name = baseName(path);
    const std::string_view stem = name.substr(0, name.size() - nameEnding(path).size());
    return stem.empty() ? std::string() : neighbourFile(path, std::string(stem).append(ending));
}

} // namespace kvsig
