#include "support/Command.h"

#include <cstdlib>
#include <sys/wait.h>

namespace kvsig::test {

CommandResult runCommand(const TempDir& directory, const std::string& arguments,
                         const std::string& before) {
    const std::string line = "cd '" + directory.path().string() + "' && { " + before +
                             "; } && '" KVSIG_COMMAND "' " + arguments +
                             " >stdout.txt 2>stderr.txt";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, directory.read("stdout.txt"),
            directory.read("stderr.txt")};
}

} // namespace kvsig::test
