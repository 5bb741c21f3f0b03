#include "support/Command.h"

#include <cstdlib>
#include <sys/wait.h>

namespace kvsig::test {

CommandResult CommandTest::command(const std::string& arguments, const std::string& before) const {
    const std::string line = "cd '" + dir.path().string() + "' && { " + before +
                             "; } && '" KVSIG_COMMAND "' " + arguments +
                             " >stdout.txt 2>stderr.txt";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, dir.read("stdout.txt"),
            dir.read("stderr.txt")};
}

} // namespace kvsig::test
