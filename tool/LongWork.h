#pragma once

#include "tool/Interrupt.h"
#include "tool/Progress.h"

#include <string>

namespace kvsig::tool {

/// A piece of work that may take long: it shows how far it is and can be interrupted.
class LongWork {
  public:
    /// `what` is shown while it lasts, on a terminal only.
    LongWork(const std::string& what, bool quiet) : m_progress(what, quiet) {}

    /// Tells how far the work is; false when it is to stop because the user wants it.
    [[nodiscard]] bool goOn(double done, double all) {
        m_progress.show(done, all);
        return !m_interrupt.raised();
    }
    [[nodiscard]] bool interrupted() const { return m_interrupt.raised(); }

  private:
    InterruptGuard m_interrupt;
    Progress m_progress;
};

} // namespace kvsig::tool
