#pragma once

#include "kvsig/readers/HeaderFields.h"
#include "kvsig/readers/HeaderFile.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The header of a Micromed recording, type 4.
namespace kvsig::micromed {

constexpr std::int64_t headerBytes = 640;
constexpr TextField title{"title", 0, 32};
constexpr TextField surname{"surname", 64, 22};
constexpr TextField firstName{"first name", 86, 20};
constexpr NumberField<std::uint8_t> birthMonth{"month of birth", 106};
constexpr NumberField<std::uint8_t> birthDay{"day of birth", 107};
constexpr NumberField<std::uint8_t> birthYear{"year of birth", 108}; // from 1900, like all years
constexpr NumberField<std::uint8_t> day{"day", 128};
constexpr NumberField<std::uint8_t> month{"month", 129};
constexpr NumberField<std::uint8_t> year{"year", 130};
constexpr NumberField<std::uint8_t> hour{"hour", 131};
constexpr NumberField<std::uint8_t> minute{"minute", 132};
constexpr NumberField<std::uint8_t> second{"second", 133};
constexpr NumberField<std::uint32_t> dataOffset{"offset of the first sample", 138};
constexpr NumberField<std::uint16_t> numberOfChannels{"number of channels", 142};
constexpr NumberField<std::uint16_t> multiplexer{"bytes from sample to sample", 144};
constexpr NumberField<std::uint16_t> basicRate{"basic sampling rate", 146};
constexpr NumberField<std::uint16_t> sampleBytes{"bytes of a sample", 148};
constexpr NumberField<std::uint16_t> compression{"compression", 150};
constexpr NumberField<std::uint8_t> headerType{"header type", 175};

// Zone descriptors.
constexpr std::int64_t zonesOffset = 176;
constexpr std::int64_t zoneBytes = 16;
constexpr int zoneCount = 15;
constexpr TextField zoneName{"name of a zone", 0, 8};
constexpr NumberField<std::uint32_t> zoneStart{"start of a zone", 8};
constexpr NumberField<std::uint32_t> zoneLength{"length of a zone", 12};

/// Where a zone lies.
struct Zone {
    std::int64_t start = 0;
    std::int64_t length = 0;
    /// Length 0 when it leaves the file.
    [[nodiscard]] Zone within(std::int64_t fileSize) const {
        return start + length <= fileSize ? *this : Zone{};
    }
};
/// As its descriptor says; length 0 when there is none of that name.
[[nodiscard]] Zone findZone(const HeaderBlock& header, std::string_view name);
/// "its zone NOTE (offset 7, 44 bytes) leaves the file of 20 bytes"; empty when it does not.
[[nodiscard]] std::string whyOutside(const HeaderBlock& header, std::string_view name,
                                     std::int64_t fileSize);
/// Whether a zone has a record in use behind the `most` that are read. Unused ones are full of 0 or
/// of 0xFF.
[[nodiscard]] bool holdsMore(const HeaderFile& file, Zone zone, std::int64_t recordBytes,
                             std::int64_t most);

/// A text field without the blanks, NULs and bytes 1 that fill it.
[[nodiscard]] std::string textOf(const HeaderBlock& block, TextField field, std::int64_t base = 0);

} // namespace kvsig::micromed
