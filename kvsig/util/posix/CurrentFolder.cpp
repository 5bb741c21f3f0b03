#include "kvsig/util/CurrentFolder.h"

#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace kvsig {

bool isPathSeparator(char c) { return c == '/'; }
std::size_t driveLength(std::string_view) { return 0; }
bool enterDrive(const std::string&) { return true; }
bool enterFolder(const std::string& folder) { return ::chdir(folder.c_str()) == 0; }

std::string currentFolder(int) {
    // A null buffer makes the C library allocate what the path needs.
    const std::unique_ptr<char, void (*)(void*)> folder(::getcwd(nullptr, 0), &std::free);
    return folder ? folder.get() : "";
}

} // namespace kvsig
