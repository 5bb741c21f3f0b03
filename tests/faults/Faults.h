#pragma once

#include <cerrno>

/// Faults of the system below the library's file classes: the linker leads its calls here (see
/// tests/CMakeLists.txt). Without a plan they go on to the system.
namespace kvsig::test {

struct FaultPlan {
    int failFrom = -1;       ///< the call from which on all fail, counted from 0; below 0 none
    int failures = 1 << 30;  ///< how many of them fail
    int code = EIO;          ///< errno of these failures
    int longestTransfer = 0; ///< bytes that one call moves at most; 0 for no limit
    bool interrupts = false; ///< every second call, but of rename, fails with EINTR first
    bool kills = false;      ///< the process dies in the middle of the call instead (writes)
};

/// Applies to reads, or to writes (write, pwrite, fsync, rename), while it lives.
class ReadFaults {
  public:
    explicit ReadFaults(const FaultPlan& plan);
    ~ReadFaults();
    ReadFaults(const ReadFaults&) = delete;
    ReadFaults& operator=(const ReadFaults&) = delete;
    [[nodiscard]] static int calls();
};

class WriteFaults {
  public:
    explicit WriteFaults(const FaultPlan& plan);
    ~WriteFaults();
    WriteFaults(const WriteFaults&) = delete;
    WriteFaults& operator=(const WriteFaults&) = delete;
    [[nodiscard]] static int calls();
};

} // namespace kvsig::test
