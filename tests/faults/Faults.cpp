#include "faults/Faults.h"

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <sys/types.h>

namespace kvsig::test {
namespace {

struct Active {
    FaultPlan plan;
    int calls = 0;
    bool interrupted = false;

    // Whether this call fails.
    bool fails(bool canBeInterrupted = true) {
        if (plan.interrupts && canBeInterrupted && !interrupted) {
            interrupted = true;
            errno = EINTR;
            return true;
        }
        interrupted = false;
        const int call = calls++;
        if (plan.failFrom < 0 || call < plan.failFrom || call - plan.failFrom >= plan.failures)
            return false;
        errno = plan.code;
        return true;
    }
    // What a call that fails answers, if it comes to answer.
    [[nodiscard]] int refusal() const {
        if (plan.kills)
            std::raise(SIGKILL);
        return -1;
    }
    [[nodiscard]] std::size_t moved(std::size_t bytes) const {
        return plan.longestTransfer > 0
                   ? std::min(bytes, static_cast<std::size_t>(plan.longestTransfer))
                   : bytes;
    }
};

Active reads;
Active writes;

} // namespace

ReadFaults::ReadFaults(const FaultPlan& plan) { reads = {plan}; }
ReadFaults::~ReadFaults() { reads = {}; }
int ReadFaults::calls() { return reads.calls; }

WriteFaults::WriteFaults(const FaultPlan& plan) { writes = {plan}; }
WriteFaults::~WriteFaults() { writes = {}; }
int WriteFaults::calls() { return writes.calls; }

} // namespace kvsig::test

// Names that the linker gives.
extern "C" {

ssize_t __real_pread(int handle, void* buffer, size_t bytes, off_t offset);
ssize_t __wrap_pread(int handle, void* buffer, size_t bytes, off_t offset) {
    using kvsig::test::reads;
    return reads.fails() ? -1 : __real_pread(handle, buffer, reads.moved(bytes), offset);
}

ssize_t __real_pwrite(int handle, const void* data, size_t bytes, off_t offset);
ssize_t __wrap_pwrite(int handle, const void* data, size_t bytes, off_t offset) {
    using kvsig::test::writes;
    if (!writes.fails())
        return __real_pwrite(handle, data, writes.moved(bytes), offset);
    if (writes.plan.kills)
        static_cast<void>(!__real_pwrite(handle, data, bytes / 2, offset));
    return writes.refusal();
}

int __real_fsync(int handle);
int __wrap_fsync(int handle) {
    using kvsig::test::writes;
    return writes.fails() ? writes.refusal() : __real_fsync(handle);
}

int __real_rename(const char* from, const char* to);
int __wrap_rename(const char* from, const char* to) {
    using kvsig::test::writes;
    return writes.fails(false) ? writes.refusal() : __real_rename(from, to);
}
}
