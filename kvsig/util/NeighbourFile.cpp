#include "kvsig/util/NeighbourFile.h"

#include "kvsig/util/Text.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace kvsig {
namespace {

std::filesystem::file_type typeOf(const std::string& path) {
    std::error_code failed;
    return std::filesystem::status(path, failed).type();
}

bool isRegular(const std::string& path) {
    return typeOf(path) == std::filesystem::file_type::regular;
}

// A link that leads nowhere, or where nothing can be found out.
bool isLostLink(const std::string& path) {
    using std::filesystem::file_type;
    std::error_code failed;
    const file_type meant = typeOf(path);
    return std::filesystem::symlink_status(path, failed).type() == file_type::symlink &&
           (meant == file_type::not_found || meant == file_type::none);
}

// Of several such files the first in byte order, whatever order the folder lists them in.
void takeFirst(std::string& found, const std::string& candidate) {
    if (found.empty() || candidate < found)
        found = candidate;
}

} // namespace

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
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    std::string exact = (folder / base).string();
    if (isRegular(exact))
        return exact;
    std::string found;
    std::string lost;
    std::error_code failed;
    std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed)) {
        const std::string other = entry->path().filename().string();
        const std::string candidate = (folder / other).string();
        if (!equalNoCase(other, base))
            continue;
        if (isRegular(candidate))
            takeFirst(found, candidate);
        else if (isLostLink(candidate))
            takeFirst(lost, candidate);
    }
    return found.empty() ? lost : found;
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
