#pragma once

#include "support/TempDir.h"
#include "support/Testing.h"

namespace kvsig::test {

/// What a run of the command left behind.
struct CommandResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

/// Tests of the real command, in a folder of their own.
class CommandTest : public testing::Test {
  protected:
    /// Runs it with these arguments (as a shell splits them), after the shell has done `before`.
    CommandResult command(const std::string& arguments, const std::string& before = ":") const;

    const TempDir dir;
};

} // namespace kvsig::test
