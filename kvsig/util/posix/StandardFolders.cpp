#include "kvsig/util/StandardFolders.h"

#include "kvsig/util/Text.h"

#include <cstdlib>
#include <dlfcn.h>
#include <memory>

namespace kvsig {
namespace {

const char anchor = 0; // an address of this library

std::string findLibraryFolder() {
    Dl_info info{};
    if (::dladdr(&anchor, &info) == 0 || !info.dli_fname)
        return {};
    const std::unique_ptr<char, void (*)(void*)> path(::realpath(info.dli_fname, nullptr),
                                                      &std::free);
    const std::string file(viewOf(path.get()));
    return file.substr(0, file.find_last_of('/'));
}

} // namespace

std::string userConfigFolder() {
    // A relative path is not valid there.
    if (std::string config(viewOf(std::getenv("XDG_CONFIG_HOME"))); config.starts_with('/'))
        return config;
    const std::string home(viewOf(std::getenv("HOME")));
    return home.starts_with('/') ? home + "/.config" : std::string();
}

// Found once: the name may be relative to the directory in which the program started.
std::string libraryFolder() {
    static const std::string folder = findLibraryFolder();
    return folder;
}

} // namespace kvsig
