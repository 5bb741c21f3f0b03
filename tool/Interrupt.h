#pragma once

#include <csignal>

namespace kvsig::tool {

/// While it lives, an interrupt from the keyboard or a request to end only raises a flag, so that
/// a command in its work can stop and leave no temporary file behind. One at a time.
class InterruptGuard {
  public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

    [[nodiscard]] bool raised() const;

  private:
    using Handler = void (*)(int);
    Handler m_oldInterrupt;
    Handler m_oldTerminate;
};

} // namespace kvsig::tool
