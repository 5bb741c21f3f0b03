#include "kvsig/readers/NihonKohdenLog.h"

#include "kvsig/readers/HeaderFile.h"
#include "kvsig/readers/NihonKohdenLayout.h"

#include <algorithm>
#include <set>

namespace kvsig::nk {
namespace {

// hhmmss as seconds; -1 when it is no such time.
int secondsOf(std::string_view text) {
    const int hours = digitsAt(text, 0, 2), minutes = digitsAt(text, 2, 2),
              seconds = digitsAt(text, 4, 2);
    return hours < 0 || minutes < 0 || seconds < 0 ? -1 : 3600 * hours + 60 * minutes + seconds;
}

// (yymmddhhmmss)
CalendarTime clockOf(std::string_view text) {
    const int year = digitsAt(text, 1, 2);
    const CalendarTime clock{fullYear(year),       digitsAt(text, 3, 2),
                             digitsAt(text, 5, 2), digitsAt(text, 7, 2),
                             digitsAt(text, 9, 2), static_cast<double>(digitsAt(text, 11, 2))};
    return year >= 0 && clock.hasDate() && clock.hasTime() ? clock : CalendarTime();
}

std::int64_t addressAt(const HeaderBlock& head, int index) {
    return valueOf(head, blockAddress, index * addressStep);
}

// Empty when there is no whole block head behind the file's.
HeaderBlock logBlock(const HeaderFile& file, std::int64_t address) {
    const HeaderBlock head = file.read("log block", address, log::entries);
    if (address < headBytes || head.bytes().size() < static_cast<std::size_t>(log::entries))
        return {};
    return file.read("log block", address,
                     log::entries + valueOf(head, log::entryCount) * log::entryBytes);
}

// Text up to the first NUL, its blanks kept: a continuation may follow.
std::string textAt(const HeaderBlock& block, std::int64_t entry) {
    std::string text;
    for (int i = 0; i < log::text.width; ++i) {
        const auto c = valueOf(block, NumberField<char>{"", log::text.offset + i}, entry);
        if (c == '\0')
            break;
        text.push_back(c);
    }
    return text;
}

void readEntries(const HeaderBlock& block, const HeaderBlock& sub, std::vector<LogEntry>& entries) {
    const auto held = static_cast<std::int64_t>(block.bytes().size());
    const bool continued =
        !sub.bytes().empty() && valueOf(sub, log::entryCount) == valueOf(block, log::entryCount);
    for (std::int64_t at = log::entries; at + log::entryBytes <= held; at += log::entryBytes) {
        LogEntry entry;
        entry.text = textAt(block, at) + (continued ? textAt(sub, at) : std::string());
        entry.text.erase(entry.text.find_last_not_of(' ') + 1);
        const int seconds = secondsOf(valueOf(block, log::elapsed, at));
        if (entry.text.empty() || seconds < 0)
            continue;
        if (continued)
            entry.fraction = std::max(digitsAt(valueOf(sub, log::microseconds, at), 0, 6), 0) / 1e6;
        entry.elapsed = seconds + entry.fraction;
        entry.clock = clockOf(valueOf(block, log::clock, at));
        entries.push_back(std::move(entry));
    }
}

} // namespace

std::vector<LogEntry> readLog(const char* path, std::vector<std::string>& faults) {
    HeaderFile file;
    std::string reason;
    std::vector<LogEntry> entries;
    if (!file.open(path, &reason)) {
        faults.push_back(reason);
        return entries;
    }
    const HeaderBlock head =
        file.read("table", 0, headBytes + (log::subBlocks + log::mostBlocks) * addressStep);
    const int said = valueOf(head, blockCount);
    if (!file.fault().empty()) {
        faults.push_back(file.fault());
        return entries;
    }
    if (deviceOf(valueOf(head, signature)) == Device::none || file.size() < headBytes) {
        faults.push_back("it is no event file of a Nihon Kohden recording");
        return entries;
    }
    if (said > log::mostBlocks)
        faults.push_back(sentenceOf(head, blockCount) + ", it can hold " +
                         std::to_string(log::mostBlocks));
    std::set<std::int64_t> seen;
    for (int i = 0; i < std::min(said, log::mostBlocks); ++i) {
        const std::int64_t address = addressAt(head, i);
        const HeaderBlock block = logBlock(file, address);
        const std::string place =
            "log block " + std::to_string(i + 1) + " at offset " + std::to_string(address);
        const auto whole = log::entries + valueOf(block, log::entryCount) * log::entryBytes;
        if (!seen.insert(address).second) {
            faults.push_back(place + " stands in its table twice");
            continue;
        }
        if (address < headBytes || block.bytes().size() < static_cast<std::size_t>(whole))
            faults.push_back(place + " is not between the header and the file's end at " +
                             std::to_string(file.size()));
        const std::int64_t subAddress =
            said < log::mostBlocks ? addressAt(head, i + log::subBlocks) : 0;
        HeaderBlock sub;
        if (subAddress > 0 && !seen.contains(subAddress)) {
            sub = logBlock(file, subAddress);
            // With another number of entries it belongs to something else.
            const bool same = valueOf(sub, log::entryCount) == valueOf(block, log::entryCount);
            if (sub.bytes().empty() ||
                (same && sub.bytes().size() < static_cast<std::size_t>(whole)))
                faults.push_back("the continuation of " + place + " (offset " +
                                 std::to_string(subAddress) + ") leaves the file of " +
                                 std::to_string(file.size()) + " bytes");
            if (!same)
                sub = {};
        }
        readEntries(block, sub, entries);
    }
    if (!file.fault().empty())
        faults.push_back(file.fault());
    return entries;
}

} // namespace kvsig::nk
