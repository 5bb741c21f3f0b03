#include "kvsig/readers/BlackrockEvents.h"

#include "kvsig/readers/BlackrockLayout.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/Utf16.h"

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

namespace kvsig::blackrock {
namespace {

constexpr NumberField<std::uint32_t> headerSize{"number of header bytes", 12};
constexpr NumberField<std::uint32_t> packetSize{"bytes of a packet", 16};
constexpr NumberField<std::uint32_t> ticks{"clock ticks per second", 20};
constexpr std::int64_t startOffset = 28;
constexpr NumberField<std::uint32_t> extensionCount{"number of extended headers", 332};
constexpr std::int64_t extensionsOffset = 336;
constexpr std::int64_t extensionBytes = 32;

// Inside an extended header.
constexpr TextField extensionId{"id", 0, 8};
constexpr NumberField<std::uint16_t> electrode{"electrode", 8};
constexpr TextField label{"label", 10, 16};
constexpr NumberField<std::uint16_t> nanovolts{"nanovolts per bit", 12};

// What stands for a scale that 16 bits do not hold.
constexpr std::uint16_t overflownNanovolts = 21516;
constexpr double trueNanovolts = 152592.547;

// Inside a packet, counted from its id, which follows the time stamp.
constexpr NumberField<std::uint16_t> packetId{"packet id", 0};
constexpr NumberField<std::uint16_t> digitalValue{"digital value", 4};
constexpr NumberField<std::uint8_t> charset{"character set", 2};
constexpr std::int64_t commentOffset = 8;
constexpr std::uint16_t digitalPacket = 0;
constexpr std::uint16_t commentPacket = 0xFFFF;
constexpr std::uint8_t utf16Charset = 1;

constexpr std::int64_t shortestPacket = 12;

// Up to the first NUL: anonymised files have stray bytes behind it.
std::string commentText(std::span<const std::byte> bytes, std::uint8_t set) {
    if (set == utf16Charset)
        return textOfUtf16(bytes);
    std::string text;
    for (auto byte = bytes.begin(); byte != bytes.end() && *byte != std::byte{0}; ++byte)
        text.push_back(static_cast<char>(*byte));
    return text;
}

} // namespace

std::optional<EventHeader> readEventHeader(const HeaderFile& file, std::string& reason) {
    const HeaderBlock head = file.read("header", 0, extensionsOffset);
    const std::string id = valueOf(head, fileId);
    const std::int64_t extensions = valueOf(head, extensionCount);
    EventHeader header;
    header.wideStamps = id == wideEventId;
    header.headerBytes = valueOf(head, headerSize);
    header.packetBytes = valueOf(head, packetSize);
    header.ticksPerSecond = valueOf(head, ticks);
    header.start = startAt(head, startOffset);
    reason = file.fault();
    if (!reason.empty())
        return std::nullopt;
    if (file.size() < extensionsOffset)
        reason = "the file ends after " + std::to_string(file.size()) +
                 " bytes, inside the header of at least " + std::to_string(extensionsOffset);
    else if (id != eventId && !header.wideStamps)
        reason = "its first 8 bytes are no id of an event file";
    else if (extensionsOffset + extensions * extensionBytes > header.headerBytes)
        reason = sentenceOf(head, extensionCount) + ", more than fit in its " +
                 std::to_string(header.headerBytes) + " header bytes";
    else if (header.headerBytes > file.size())
        reason = sentenceOf(head, headerSize) + ", the file has " + std::to_string(file.size());
    else if (header.packetBytes < shortestPacket || header.packetBytes > longestEventPacket)
        reason = sentenceOf(head, packetSize);
    else if (!(header.ticksPerSecond > 0))
        reason = sentenceOf(head, ticks);
    if (!reason.empty())
        return std::nullopt;
    const HeaderBlock all =
        file.read("list of extended headers", extensionsOffset, extensions * extensionBytes);
    if (reason = file.fault(); !reason.empty())
        return std::nullopt;
    for (std::int64_t i = 0; i < extensions; ++i) {
        const std::int64_t base = i * extensionBytes;
        const std::string kind = valueOf(all, extensionId, base);
        const std::uint16_t number = valueOf(all, electrode, base);
        if (kind == "NEUEVWAV") {
            const std::uint16_t scale = valueOf(all, nanovolts, base);
            header.nanovoltsPerBit[number] = scale == overflownNanovolts ? trueNanovolts : scale;
        } else if (kind == "NEUEVLBL") {
            header.labels[number] = valueOf(all, label, base);
        }
    }
    return header;
}

void forEachEvent(const HeaderFile& file, const EventHeader& header,
                  const std::function<bool(double seconds, const std::string& text)>& take) {
    const std::int64_t stampBytes = header.wideStamps ? 8 : 4;
    const std::int64_t batch = longestEventPacket / header.packetBytes * header.packetBytes;
    double commentSeconds = 0.0;
    std::string comment; // until it is clear that no packet continues it
    const auto flush = [&] {
        std::string text = std::exchange(comment, {});
        text.erase(text.find_last_not_of(' ') + 1);
        return text.empty() || take(commentSeconds, text);
    };
    for (std::int64_t offset = header.headerBytes; offset < file.size() && file.fault().empty();
         offset += batch) {
        const HeaderBlock packets = file.read("packets", offset, batch);
        const auto held = static_cast<std::int64_t>(packets.bytes().size());
        for (std::int64_t at = 0; at + header.packetBytes <= held; at += header.packetBytes) {
            const std::int64_t body = at + stampBytes;
            const std::uint64_t stamp =
                header.wideStamps ? valueOf(packets, NumberField<std::uint64_t>{"", 0}, at)
                                  : valueOf(packets, NumberField<std::uint32_t>{"", 0}, at);
            // Wide stamps may have kept what stands for one in narrow ones.
            const bool continued =
                stamp == 0xFFFFFFFFU || (header.wideStamps && stamp == ~std::uint64_t{0});
            const std::uint16_t id = valueOf(packets, packetId, body);
            const double seconds = static_cast<double>(stamp) / header.ticksPerSecond;
            if (id == commentPacket) {
                if (!continued && !flush())
                    return;
                const std::int64_t text = std::min(body + commentOffset, at + header.packetBytes);
                const auto bytes =
                    std::span(packets.bytes())
                        .subspan(static_cast<std::size_t>(text),
                                 static_cast<std::size_t>(at + header.packetBytes - text));
                if (!continued)
                    commentSeconds = seconds;
                if (std::cmp_less(comment.size(), longestEventText))
                    comment += commentText(bytes, valueOf(packets, charset, body));
            } else if (id == digitalPacket) {
                if (!flush() ||
                    !take(seconds, std::to_string(valueOf(packets, digitalValue, body))))
                    return;
            }
        }
    }
    flush();
}

} // namespace kvsig::blackrock
