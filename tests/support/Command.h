#pragma once

#include "support/TempDir.h"

#include <string>

namespace kvsig::test {

/// What a run of the command left behind.
struct CommandResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

/// Runs the real command with these arguments (as a shell splits them) in a directory, after the
/// shell has done `before`.
CommandResult runCommand(const TempDir& directory, const std::string& arguments,
                         const std::string& before = ":");

} // namespace kvsig::test
