#include "kvsig/kernel/PathInfo.h"

#include "kvsig/util/Text.h"

namespace kvsig {

std::vector<PathInfo> splitPaths(const char* text) {
    std::vector<PathInfo> paths;
    for (const std::string& entry : splitWords(viewOf(text), ';')) {
        PathInfo info;
        copyText(info.path, entry);
        paths.push_back(info);
    }
    return paths;
}

} // namespace kvsig
