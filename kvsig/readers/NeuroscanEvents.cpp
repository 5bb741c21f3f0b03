#include "kvsig/readers/NeuroscanEvents.h"

#include "kvsig/readers/NeuroscanHeader.h"
#include "kvsig/util/Limits.h"

#include <algorithm>
#include <utility>

namespace kvsig::neuroscan {
namespace {

// The event table: a head, then records of 8 bytes (type 1) or 19 (types 2 and 3).
constexpr NumberField<std::uint8_t> tableType{"type of the event table", 0};
constexpr NumberField<std::uint32_t> tableBytes{"bytes of the event table", 1};
constexpr std::int64_t tableHead = 9, shortRecord = 8, longRecord = 19;
constexpr NumberField<std::uint16_t> stimulus{"stimulus code", 0};
constexpr NumberField<std::uint8_t> keyboard{"function key", 2};
constexpr NumberField<std::uint8_t> keypadAndStatus{"keypad and status", 3};
constexpr NumberField<std::uint32_t> eventPlace{"place of an event", 4};
constexpr int startStop = 0xE;

bool isReadType(int type) { return type >= 1 && type <= 3; }
std::int64_t recordBytesOf(int type) { return type == 1 ? shortRecord : longRecord; }

const char* statusText(int status) {
    switch (status) {
    case 0xA:
    case 0xB:
        return "DC reset";
    case 0xC:
        return "reject";
    case 0xD:
        return "accept";
    case startStop:
        return "start/stop";
    default:
        return "";
    }
}

std::string eventText(const HeaderBlock& block, std::int64_t base) {
    const int code = valueOf(block, stimulus, base);
    const int key = valueOf(block, keyboard, base);
    const int keypad = valueOf(block, keypadAndStatus, base) & 0xF;
    std::string text = statusText(valueOf(block, keypadAndStatus, base) >> 4);
    const auto put = [&text](const std::string& part) {
        text.insert(0, text.empty() ? part : part + " ");
    };
    if (keypad != 0)
        put("keypad " + std::to_string(keypad));
    if (key != 0)
        put("F" + std::to_string(key));
    if (code != 0)
        put(std::to_string(code));
    return text;
}

} // namespace

std::int64_t offsetOf(const TableOffset& table, std::int64_t size) {
    constexpr std::int64_t mostUpper = 0xFFFF; // beyond it lies no file
    const std::int64_t narrow = table.data + 2 * table.values;
    const std::int64_t wide = table.data + 4 * table.values;
    const bool isNarrow = table.values > 0 && narrow % fourGiB == table.lower;
    const bool isWide = table.values > 0 && wide % fourGiB == table.lower;
    if (isNarrow != isWide)
        return isNarrow ? narrow : wide;
    const std::int64_t whole =
        table.upper <= mostUpper ? table.lower + fourGiB * table.upper : std::int64_t{-1};
    // Of whole gigabytes of samples both widths have the same lower bits.
    const bool isBorneOut = isNarrow && (whole == narrow || whole == wide);
    return size > fourGiB || isBorneOut ? whole : table.lower;
}

bool isTableAt(const HeaderFile& file, std::int64_t offset) {
    const HeaderBlock head = file.read("event table", offset, tableHead);
    const int type = valueOf(head, tableType);
    const std::int64_t said = valueOf(head, tableBytes);
    return isReadType(type) && said <= file.size() - offset - tableHead &&
           said % recordBytesOf(type) == 0;
}

EventTable readTable(const HeaderFile& file, const TablePlace& place) {
    EventTable table;
    const std::int64_t size = file.size();
    const HeaderBlock head = file.read("event table", place.offset, tableHead);
    if (std::cmp_less(head.bytes().size(), tableHead)) {
        table.oddities.push_back("the event table (offset " + std::to_string(place.offset) +
                                 ") is cut: " + std::to_string(head.bytes().size()) + " of its " +
                                 std::to_string(tableHead) +
                                 " bytes are in the file, its events are left out");
        return table;
    }
    const int type = valueOf(head, tableType);
    if (!isReadType(type)) {
        table.oddities.push_back(sentenceOf(head, tableType, 0, place.offset) +
                                 ", 1, 2 and 3 are read: its events are left out");
        return table;
    }
    // Offsets of events have 32 bits and nothing has the upper ones.
    if (type != 3 && size > fourGiB) {
        table.oddities.emplace_back(
            "behind 4 GiB the places of its events are ambiguous: all are left out");
        return table;
    }
    const std::int64_t recordBytes = recordBytesOf(type);
    const std::int64_t room = std::max<std::int64_t>(size - place.offset - tableHead, 0);
    const std::int64_t said = valueOf(head, tableBytes);
    if (said > room)
        table.oddities.push_back(sentenceOf(head, tableBytes, 0, place.offset) + ", " +
                                 std::to_string(room) + " are left in the file");
    else if (said % recordBytes != 0)
        table.oddities.push_back(sentenceOf(head, tableBytes, 0, place.offset) +
                                 ", no whole number of records of " + std::to_string(recordBytes) +
                                 ": the last " + std::to_string(said % recordBytes) +
                                 " are left out");
    const std::int64_t count = std::min(said, room) / recordBytes;
    constexpr std::int64_t batch = 1 << 14;
    std::int64_t pauses = 0, firstPause = 0;
    for (std::int64_t done = 0; done < count && table.events.size() < mostEvents; done += batch) {
        const std::int64_t part = std::min(batch, count - done);
        const HeaderBlock records = file.read(
            "list of events", place.offset + tableHead + done * recordBytes, part * recordBytes);
        for (std::int64_t base = 0; base < part * recordBytes; base += recordBytes) {
            const std::int64_t at = valueOf(records, eventPlace, base);
            const std::int64_t sample = type == 3         ? at
                                        : at < place.data ? -1
                                                          : (at - place.data) / place.frameBytes;
            std::string text = eventText(records, base);
            const bool isPause = valueOf(records, keypadAndStatus, base) >> 4 == startStop &&
                                 sample > 0 && sample < place.frames;
            if (isPause && pauses++ == 0)
                firstPause = sample;
            if (!text.empty() && sample >= 0 && sample <= place.frames)
                table.events.push_back({sample, std::move(text), {}, 0.0});
        }
    }
    if (pauses > 0)
        table.oddities.push_back(
            std::to_string(pauses) +
            " marks inside the recording say start/stop, the first at sample " +
            std::to_string(firstPause) +
            ": pauses of unknown length, behind which the clock is too early");
    return table;
}

} // namespace kvsig::neuroscan
