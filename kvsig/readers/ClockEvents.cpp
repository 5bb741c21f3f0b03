#include "kvsig/readers/ClockEvents.h"

#include <utility>

namespace kvsig {

void ClockEvents::add(std::optional<std::int64_t> sample, FlatEvent event) {
    ++m_listed;
    if (!sample) {
        ++m_outside;
        return;
    }
    event.sample = *sample;
    m_events->push_back(std::move(event));
}

std::string ClockEvents::outside(const char* whenAll) const {
    if (m_outside == 0)
        return {};
    const std::string number = "(" + std::to_string(m_outside) + ")";
    return m_outside == m_listed
               ? "all its events " + number + " lie outside the recording" + whenAll
               : "events outside the recording are left out " + number;
}

} // namespace kvsig
