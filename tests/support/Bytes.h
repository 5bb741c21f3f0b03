#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace kvsig::test {

/// The bytes of a file under construction: little-endian numbers and texts, appended or put at an
/// offset, zeros in between.
class Bytes {
  public:
    template <typename Number>
    requires std::is_arithmetic_v<Number> Bytes& put(std::size_t offset, Number value) {
        std::uint64_t bits = 0;
        if constexpr (std::same_as<Number, float>)
            bits = std::bit_cast<std::uint32_t>(value);
        else if constexpr (std::same_as<Number, double>)
            bits = std::bit_cast<std::uint64_t>(value);
        else
            bits = static_cast<std::uint64_t>(value);
        std::string bytes;
        for (std::size_t i = 0; i < sizeof(Number); ++i)
            bytes.push_back(static_cast<char>(bits >> (8 * i) & 0xFFU));
        return put(offset, bytes, bytes.size());
    }

    /// Text in a field of `width` bytes.
    Bytes& put(std::size_t offset, std::string_view text, std::size_t width, char pad = '\0') {
        std::string field(text.substr(0, width));
        field.resize(width, pad);
        m_bytes.resize(std::max(m_bytes.size(), offset + width));
        m_bytes.replace(offset, width, field);
        m_fields.push_back(offset);
        return *this;
    }

    template <typename Number>
    requires std::is_arithmetic_v<Number> Bytes& add(Number value) {
        return put(m_bytes.size(), value);
    }
    Bytes& add(std::string_view bytes) { return put(m_bytes.size(), bytes, bytes.size()); }
    Bytes& padTo(std::size_t length) {
        m_bytes.resize(std::max(m_bytes.size(), length));
        return *this;
    }

    [[nodiscard]] std::size_t size() const { return m_bytes.size(); }
    [[nodiscard]] const std::string& str() const { return m_bytes; }
    /// Where what was put begins, in order, up to `end`, which is the last.
    [[nodiscard]] std::vector<std::size_t> boundaries(std::size_t end) const {
        std::set<std::size_t> offsets(m_fields.begin(), m_fields.end());
        offsets.erase(offsets.lower_bound(end), offsets.end());
        offsets.insert(end);
        return {offsets.begin(), offsets.end()};
    }

  private:
    std::string m_bytes;
    std::vector<std::size_t> m_fields;
};

/// The bytes of a number of so many bits.
inline std::string u8(std::uint64_t value) {
    return Bytes().add(static_cast<std::uint8_t>(value)).str();
}
inline std::string u16(std::uint64_t value) {
    return Bytes().add(static_cast<std::uint16_t>(value)).str();
}
inline std::string u32(std::uint64_t value) {
    return Bytes().add(static_cast<std::uint32_t>(value)).str();
}
inline std::string u64(std::uint64_t value) { return Bytes().add(value).str(); }
inline std::string f64(double value) { return Bytes().add(value).str(); }

/// The bytes with some of them replaced.
inline std::string poked(std::string bytes, std::size_t offset, const std::string& by) {
    bytes.replace(offset, by.size(), by);
    return bytes;
}

/// A count that differs from channel to channel and from sample to sample and changes its sign, so
/// that a swap or a shift shows.
inline std::int32_t rampCount(int channel, std::int64_t index, std::int32_t period = 30011) {
    const auto value = static_cast<std::int32_t>((index * 7 + channel * 1013) % period);
    return (index + channel) % 2 == 0 ? value : -value;
}

} // namespace kvsig::test
