#include "faults/Faults.h"
#include "support/EdfFile.h"
#include "support/InDirectory.h"
#include "support/TempDir.h"
#include "support/Testing.h"
#include "tool/CommandLine.h"

#include <CLI/CLI.hpp>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace kvsig::test {
namespace {

// Runs the command in a process of its own, which is killed in the middle of its write call of that
// number, or ends by itself when it makes fewer. Returns whether it was killed.
bool killedAt(int call, const std::string& line) {
    const pid_t child = fork();
    if (child == 0) {
        const WriteFaults faults({.failFrom = call, .kills = true});
        CLI::App app;
        int exitCode = 0;
        tool::defineCommandLine(app, exitCode);
        app.parse(line);
        _exit(exitCode);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    EXPECT_TRUE(killed || (WIFEXITED(status) && WEXITSTATUS(status) == 0)) << line << " " << call;
    return killed;
}

// Wherever it dies, whoever looks finds each file as it was before or complete; what it leaves
// behind does not disturb the next run.
TEST(KilledCommand, LeavesTheOldOrTheNewFile) {
    const TempDir dir;
    const InDirectory here(dir.path());
    EdfFile recording;
    for (const char* name : {"Fp1", "F7", "C3", "O1"})
        recording.signal(name, 256);
    recording.records(120).writeTo(dir.file("a.edf"));
    const std::string old = "[FileInfo]\nFile=page.raw\n"; // a layout may be replaced by its like
    const struct {
        const char* line;
        std::vector<std::string> files;
        int fewestCalls; // bytes in pieces, a flush to the disk and a renaming
    } cases[] = {{"export a.edf -q -o page.csv", {"page.csv"}, 4},
                 {"export a.edf -q -o page.npy", {"page.npy"}, 4},
                 {"export a.edf -q -o page.raw", {"page.raw", "page.lay"}, 6},
                 {"plot a.edf -q --to 10 -o page.svg", {"page.svg"}, 3}};
    for (const auto& [line, files, fewestCalls] : cases) {
        SCOPED_TRACE(line);
        ASSERT_FALSE(killedAt(-1, line));
        std::vector<std::string> fresh;
        for (const std::string& file : files)
            fresh.push_back(dir.read(file));
        int call = 0;
        for (bool killed = true; killed; ++call) {
            for (const std::string& file : files)
                dir.write(file, old);
            killed = killedAt(call, line);
            for (std::size_t i = 0; i < files.size(); ++i) {
                const std::string found = dir.read(files[i]);
                EXPECT_TRUE(found == fresh[i] || (killed && found == old))
                    << files[i] << " after a kill at call " << call;
            }
        }
        EXPECT_GT(call, fewestCalls);
    }
}

} // namespace
} // namespace kvsig::test
