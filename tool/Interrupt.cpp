#include "tool/Interrupt.h"

namespace kvsig::tool {
namespace {

volatile std::sig_atomic_t interruptRaised = 0;

void raiseFlag(int) { interruptRaised = 1; }

} // namespace

InterruptGuard::InterruptGuard() {
    interruptRaised = 0;
    m_oldInterrupt = std::signal(SIGINT, raiseFlag);
    m_oldTerminate = std::signal(SIGTERM, raiseFlag);
}

InterruptGuard::~InterruptGuard() {
    std::signal(SIGINT, m_oldInterrupt);
    std::signal(SIGTERM, m_oldTerminate);
}

bool InterruptGuard::raised() const { return interruptRaised != 0; }

} // namespace kvsig::tool
