#include "Trial.h"

#include "Mutation.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace kvsig::mutants {
namespace {

namespace fs = std::filesystem;

constexpr std::array<const char*, 5> columns{"opened", "refused", "crashed", "hung > 5 s",
                                             "> 512 MiB"};

// None that a sanitizer or a library ends a process with.
constexpr int refusedCode = 42;

// Descriptions of the folder and tables of true values are no recordings.
bool isRecording(const fs::path& path) {
    return path.extension() != ".md" && path.extension() != ".txt";
}

std::vector<Original> originalsIn(const fs::path& folder) {
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && isRecording(entry.path()))
            paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<Original> originals;
    for (const fs::path& path : paths) {
        std::ifstream file(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        originals.push_back({path.filename().string(), shortened(bytes)});
    }
    return originals;
}

// A folder in memory, where there is one, that goes with the process.
class Scratch {
  public:
    Scratch() {
        std::string name = fs::is_directory("/dev/shm") ? "/dev/shm" : "/tmp";
        name += "/kvsig-mutants-XXXXXX";
        if (::mkdtemp(name.data()))
            m_path = name;
    }
    ~Scratch() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[nodiscard]] const fs::path& path() const { return m_path; }

  private:
    fs::path m_path;
};

[[noreturn]] void readInChild(const Subject& subject, const std::string& path,
                              const std::string& log) {
    const int out = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(out, STDERR_FILENO);
    // Time of its own, and as a last resort of the clock: a library may wait for ever.
    const rlimit seconds{mostSeconds, mostSeconds + 1};
    ::setrlimit(RLIMIT_CPU, &seconds);
    ::alarm(12 * mostSeconds);
    const bool opened = subject.opensAndReads(path);
    ::_exit(opened ? EXIT_SUCCESS : refusedCode);
}

long residentKilobytes(pid_t process) {
    long all = 0;
    long resident = 0;
    std::ifstream("/proc/" + std::to_string(process) + "/statm") >> all >> resident;
    return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

// Waits for the child and ends it when it takes too much memory: filling the machine's takes longer
// than anything else.
void awaitChild(pid_t child, int& status, rusage& used) {
    constexpr timespec glance{0, 20'000'000};
    sigset_t ended;
    ::sigemptyset(&ended);
    ::sigaddset(&ended, SIGCHLD);
    while (::wait4(child, &status, WNOHANG, &used) == 0) {
        if (residentKilobytes(child) > mostKilobytes)
            ::kill(child, SIGKILL);
        ::sigtimedwait(&ended, nullptr, &glance);
    }
}

} // namespace

Outcome tryIn(const Subject& subject, const std::string& path, const std::string& log) {
    const pid_t child = ::fork();
    if (child == 0)
        readInChild(subject, path, log);
    if (child < 0)
        throw std::runtime_error("no process can be started");
    int status = 0;
    rusage used{};
    awaitChild(child, status, used);
    if (used.ru_maxrss > mostKilobytes)
        return Outcome::greedy;
    if (WIFSIGNALED(status))
        return WTERMSIG(status) == SIGXCPU || WTERMSIG(status) == SIGALRM ? Outcome::hung
                                                                          : Outcome::crashed;
    if (WEXITSTATUS(status) == EXIT_SUCCESS)
        return Outcome::opened;
    return WEXITSTATUS(status) == refusedCode ? Outcome::refused : Outcome::crashed;
}

int runMutants(const Subject& subject, int count, char** arguments) {
    if (count != 4) {
        std::cerr << "usage: " << arguments[0] << " COUNT FOLDER-OF-RECORDINGS FOLDER-TO-KEEP-IN\n";
        return 2;
    }
    const auto wanted = static_cast<std::uint64_t>(std::max(std::atol(arguments[1]), 0L));
    const std::vector<Original> originals = originalsIn(arguments[2]);
    const fs::path keep = fs::absolute(arguments[3]);
    if (originals.empty()) {
        std::cerr << arguments[2] << " holds no recordings\n";
        return 2;
    }
    const Scratch scratch;
    // Blocked, it ends the wait for a child instead of being lost.
    sigset_t ended;
    ::sigemptyset(&ended);
    ::sigaddset(&ended, SIGCHLD);
    ::sigprocmask(SIG_BLOCK, &ended, nullptr);
    std::array<long, columns.size()> counts{};
    const auto begin = std::chrono::steady_clock::now();
    for (std::uint64_t number = 0; number < wanted; ++number) {
        const Original& original = originals[number % originals.size()];
        std::string what;
        const std::string bytes = mutantOf(original, number, &what);
        const fs::path path = scratch.path() / original.name;
        const fs::path log = scratch.path() / "output";
        std::ofstream(path, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        const Outcome outcome = tryIn(subject, path.string(), log.string());
        ++counts[static_cast<std::size_t>(outcome)];
        if (outcome == Outcome::opened || outcome == Outcome::refused)
            continue;
        fs::create_directories(keep);
        const std::string name = subject.name + "-" + std::to_string(number) + "-" + original.name;
        fs::copy_file(path, keep / name, fs::copy_options::overwrite_existing);
        fs::copy_file(log, keep / (name + ".log"), fs::copy_options::overwrite_existing);
        std::cerr << name << ": " << columns[static_cast<std::size_t>(outcome)] << ", " << what
                  << std::endl;
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    std::cout << "| " << subject.name << " | " << wanted << " |";
    for (const long number : counts)
        std::cout << ' ' << number << " |";
    std::cout << ' ' << static_cast<long>(taken.count()) << " |" << std::endl;
    return counts[2] + counts[3] + counts[4] > 0 ? 1 : 0;
}

} // namespace kvsig::mutants
