#pragma once

#include "kvsig/readers/FlatRecording.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvsig {

/// Takes the events that a file lists by clock times; those that have no sample are counted.
class ClockEvents {
  public:
    /// Adds to `events`, which must live as long.
    explicit ClockEvents(std::vector<FlatEvent>& events) : m_events(&events) {}

    /// `sample` is what FlatReader::sampleAt() says; that of the event does not count.
    void add(std::optional<std::int64_t> sample, FlatEvent event);

    [[nodiscard]] std::size_t listed() const { return m_listed; }
    /// Of those outside the recording in words, or nothing; `whenAll` is what follows when all are.
    [[nodiscard]] std::string outside(const char* whenAll = "") const;

  private:
    std::vector<FlatEvent>* m_events;
    std::size_t m_listed = 0;
    std::size_t m_outside = 0;
};

} // namespace kvsig
