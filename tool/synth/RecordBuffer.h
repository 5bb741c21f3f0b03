#pragma once

#include "tool/synth/EdfHeader.h"

#include <cstddef>
#include <span>
#include <vector>

namespace kvsig::tool {

/// One data record in the file's byte order: the signals one after the other.
class RecordBuffer {
  public:
    explicit RecordBuffer(const EdfHeader& header);

    /// Stores physical values of a signal from its sample `first` on: rounded to the nearest
    /// digital value, held inside the digital range. The caller stays inside the record.
    void put(std::size_t signal, std::size_t first, std::span<const float> values);

    /// Stores raw bytes as the content of a signal, the rest of which is filled with zeros.
    void putBytes(std::size_t signal, std::string_view bytes);

    [[nodiscard]] const std::vector<std::byte>& bytes() const { return m_bytes; }

  private:
    struct Slot {
        std::size_t offset, size; ///< in bytes
        double perUnit;           ///< digital steps
        double physicalMinimum;
        double digitalSpan;
        std::int32_t digitalMinimum;
    };

    std::size_t m_width;
    std::vector<Slot> m_slots;
    std::vector<std::byte> m_bytes;
};

} // namespace kvsig::tool
