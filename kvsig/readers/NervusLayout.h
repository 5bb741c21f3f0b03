#pragma once

#include "kvsig/readers/HeaderFields.h"
#include "kvsig/util/Utf16.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

/// Where things stand in a Nervus / NicoletOne container (.e).
namespace kvsig::nervus {

/// UTF-16 text of fixed width.
struct WideField {
    std::int64_t offset;
    std::int64_t units;
};
[[nodiscard]] inline std::string valueOf(const HeaderBlock& block, WideField field,
                                         std::int64_t base = 0) {
    const auto held = static_cast<std::int64_t>(block.bytes().size());
    const std::int64_t first = std::clamp<std::int64_t>(base + field.offset, 0, held);
    const std::int64_t bytes = std::clamp<std::int64_t>(2 * field.units, 0, held - first);
    std::string text =
        textOfUtf16(std::span(block.bytes())
                        .subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(bytes)));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}
using kvsig::valueOf;

inline constexpr NumberField<std::uint32_t> indexPointer{"index pointer", 24};
inline constexpr NumberField<std::uint32_t> tagCount{"number of tags", 172};
inline constexpr std::int64_t tags = 176;
inline constexpr std::int64_t tagBytes = 84;
inline constexpr NumberField<std::uint32_t> entryCount{"number of index entries", 172208};
inline constexpr std::int64_t headBytes = 172212;
inline constexpr std::int64_t mostTags = (headBytes - 4 - tags) / tagBytes;

namespace tag {
inline constexpr WideField name{0, 40};
inline constexpr NumberField<std::uint32_t> section{"section of a tag", 80};
} // namespace tag

/// A block of the main index: a count, entries, and the offset of the next block.
namespace index {
inline constexpr NumberField<std::uint64_t> count{"number of entries of an index block", 0};
inline constexpr std::int64_t entries = 8;
inline constexpr std::int64_t entryBytes = 24;
inline constexpr NumberField<std::uint64_t> section{"section", 0};
inline constexpr NumberField<std::uint64_t> offset{"offset", 8};
inline constexpr NumberField<std::uint32_t> length{"section length", 20};
} // namespace index

// Names of tags.
inline constexpr const char* segmentTag = "SegmentStream";
inline constexpr const char* changeTag = "InfoChangeStream";
inline constexpr const char* eventTag = "Events";
inline constexpr const char* seriesTag = "{A271CCCB-515D-4590-B6A1-DC170C8D6EE2}";
inline constexpr const char* patientTag = "{D0B3FD0B-49D9-4BF0-8929-296DE5A55910}";

/// Times are days since 1899-12-30, by the local clock.
namespace segment {
inline constexpr NumberField<double> start{"start of a segment", 0};
inline constexpr NumberField<double> duration{"duration of a segment", 16};
inline constexpr std::int64_t bytes = 152;
} // namespace segment

/// An entry of the list of changes: where in the section of its GUID a packet stands.
namespace change {
inline constexpr std::int64_t guid = 0;
inline constexpr NumberField<std::uint64_t> offset{"offset of a packet", 32};
inline constexpr NumberField<std::uint64_t> size{"size of a packet", 40};
inline constexpr std::int64_t bytes = 48;
} // namespace change

/// A packet of channels.
namespace series {
inline constexpr NumberField<std::uint32_t> channelCount{"number of channels", 752};
inline constexpr std::int64_t channels = 760;
inline constexpr std::int64_t channelBytes = 552;
inline constexpr WideField label{0, 32}; // of 64, of which the rest is not known to be text
inline constexpr WideField reference{192, 32};
inline constexpr NumberField<double> rate{"sampling rate", 272};
inline constexpr NumberField<double> resolution{"microvolts per bit", 280};
inline constexpr NumberField<double> offset{"offset", 292};
} // namespace series

/// The patient: values, then the numbers and lengths of texts, then the texts.
namespace patient {
inline constexpr NumberField<std::uint64_t> valueCount{"number of values", 24};
inline constexpr NumberField<std::uint64_t> textCount{"number of texts", 32};
inline constexpr std::int64_t values = 40;
inline constexpr std::int64_t itemBytes = 16; ///< id, then a value or a text's length
inline constexpr NumberField<std::uint64_t> id{"id", 0};
inline constexpr NumberField<double> value{"value", 8};
inline constexpr NumberField<std::uint64_t> length{"length", 8};
inline constexpr std::uint64_t birth = 7; ///< a date
} // namespace patient

namespace event {
inline constexpr std::int64_t mark = 0;
inline constexpr const char* markGuid = "{B799F680-72A4-11D3-93D3-00500400C148}";
inline constexpr NumberField<std::uint64_t> length{"length of an event", 16};
inline constexpr std::int64_t headBytes = 24;
inline constexpr NumberField<double> date{"date", 32};
inline constexpr NumberField<double> extraSeconds{"further seconds", 40};
inline constexpr NumberField<double> duration{"duration", 48};
inline constexpr NumberField<std::uint64_t> textLength{"length of the text", 128};
inline constexpr std::int64_t type = 136;
inline constexpr std::int64_t leastBytes = 152; ///< with the type
inline constexpr WideField label{168, 32};
inline constexpr std::int64_t text = 264;
} // namespace event

/// The GUID of 16 bytes as text in braces. Its first three groups are stored little-endian.
[[nodiscard]] std::string guidAt(const HeaderBlock& block, std::int64_t offset);

} // namespace kvsig::nervus
