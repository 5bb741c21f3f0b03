#include "tool/Progress.h"

#include "kvsig/util/Saturate.h"
#include "kvsig/util/Terminal.h"

#include <iostream>
#include <utility>

namespace kvsig::tool {

Progress::Progress(std::string what, bool quiet)
    : m_what(std::move(what)), m_active(!quiet && errorStreamIsTerminal()) {}

Progress::~Progress() {
    if (m_active && m_percent >= 0)
        std::cerr << "\r\x1b[K" << std::flush;
}

void Progress::show(double done, double all) {
    const int percent = saturate<int>(100.0 * done / all);
    if (!m_active || percent == m_percent)
        return;
    m_percent = percent;
    std::cerr << '\r' << m_what << ": " << std::to_string(percent) << " %" << std::flush;
}

} // namespace kvsig::tool
