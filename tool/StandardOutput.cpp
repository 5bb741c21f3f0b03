#include "tool/StandardOutput.h"

#include "tool/Words.h"

#include <cstdio>

namespace kvsig::tool {

void print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

bool finishPrinting() {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return true;
    complain("standard output: cannot be written");
    return false;
}

} // namespace kvsig::tool
