#include "PeakMemory.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <malloc.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace kvsig::bench {
namespace {

// A line of /proc/self/status, which counts in KiB.
long statusBytes(const std::string& key) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (long value = 0; word == key && status >> value)
            return value * 1024;
    return -1;
}

long measureHere(const Contender& contender) {
    ::malloc_trim(0); // what was used before and is free must not serve this work unseen
    std::ofstream("/proc/self/clear_refs") << "5" << std::flush; // the peak is what is in use now
    const long before = statusBytes("VmHWM:");
    const Work work = contender.prepare();
    if (work.reset)
        work.reset();
    work.run();
    const long callers = work.callerBytes ? static_cast<long>(work.callerBytes()) : 0;
    return std::max(statusBytes("VmHWM:") - before - callers, 0L);
}

} // namespace

long peakMemory(const Contender& contender) {
    int ends[2];
    if (::pipe(ends) != 0)
        return -1;
    const pid_t child = ::fork();
    if (child == 0) {
        long bytes = -1;
        try {
            bytes = measureHere(contender);
        } catch (const std::exception&) {
            // The timed run says what is wrong.
        }
        const bool told = ::write(ends[1], &bytes, sizeof bytes) == sizeof bytes;
        ::_exit(told ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    ::close(ends[1]);
    long bytes = -1;
    if (child < 0 || ::read(ends[0], &bytes, sizeof bytes) != sizeof bytes)
        bytes = -1;
    ::close(ends[0]);
    if (child > 0)
        ::waitpid(child, nullptr, 0);
    return bytes;
}

} // namespace kvsig::bench
