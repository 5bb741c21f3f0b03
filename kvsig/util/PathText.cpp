#include "kvsig/util/PathText.h"

#include "kvsig/util/CurrentFolder.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <string>

namespace kvsig {
namespace {

struct PathParts {
    std::string drive, folder, name, extension;
};

PathParts splitPath(std::string_view path) {
    PathParts parts;
    parts.drive = path.substr(0, driveLength(path));
    path.remove_prefix(parts.drive.size());
    const auto nameLength =
        std::find_if(path.rbegin(), path.rend(), isPathSeparator) - path.rbegin();
    parts.folder = path.substr(0, path.size() - static_cast<std::size_t>(nameLength));
    path.remove_prefix(parts.folder.size());
    const std::size_t dot = path.rfind('.');
    const bool isExtension = dot != std::string_view::npos && dot > 0 && path != "..";
    parts.name = path.substr(0, isExtension ? dot : path.size());
    parts.extension = path.substr(parts.name.size());
    return parts;
}

void writePath(char* buf, std::string_view path) {
    copyText(buf, pathTextSize, path.size() < pathTextSize ? path : std::string_view());
}

} // namespace

char* KrnlChangeExt(char* path, const char* ext) {
    const PathParts parts = splitPath(viewOf(path));
    const std::string_view wanted = viewOf(ext);
    const char* dot = wanted.empty() || wanted.front() == '.' ? "" : ".";
    writePath(path, parts.drive + parts.folder + parts.name + dot + std::string(wanted));
    return path;
}

char* KrnlChangeFile(char* path, const char* file) {
    const PathParts parts = splitPath(viewOf(path));
    writePath(path, parts.drive + parts.folder + std::string(viewOf(file)));
    return path;
}

int KrnlMoveToDir(const char* path) {
    PathParts parts = splitPath(viewOf(path));
    if (!parts.drive.empty() && !enterDrive(parts.drive))
        return 0;
    if (parts.folder.size() > 1)
        parts.folder.pop_back();
    return parts.folder.empty() || enterFolder(parts.folder) ? 1 : 0;
}

void KrnlGetCurDir(int drive, char* buf) { writePath(buf, currentFolder(drive)); }

} // namespace kvsig
