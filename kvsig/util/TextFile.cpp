#include "kvsig/util/TextFile.h"

#include "kvsig/util/File.h"

namespace kvsig {

std::optional<std::string> readTextFile(const char* path, std::size_t mostBytes,
                                        std::string* reason) {
    const auto refuse = [reason](const std::string& why) {
        if (reason)
            *reason = why;
        return std::nullopt;
    };
    File file;
    if (!file.open(path, reason))
        return std::nullopt;
    const std::int64_t size = file.size();
    if (size < 0 || static_cast<std::uint64_t>(size) > mostBytes)
        return refuse("a text file of " + std::to_string(size) + " bytes; " +
                      std::to_string(mostBytes) + " at most are read");
    std::string text(static_cast<std::size_t>(size), '\0');
    if (file.readAt(0, text.data(), size) != size)
        return refuse("cannot be read to its end");
    return text;
}

} // namespace kvsig
