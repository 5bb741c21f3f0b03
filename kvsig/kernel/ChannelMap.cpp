#include "kvsig/kernel/ChannelMap.h"

#include "kvsig/kernel/ChannelTable.h"
#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/montage/names/ScalpGrid.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/ProfileFile.h"
#include "kvsig/util/ProfileLines.h"
#include "kvsig/util/ProfileText.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

namespace kvsig {
namespace {

constexpr int nameListSize = 32768;

// Whether a map of that name can be listed. One named as the list of maps would overwrite it.
bool canBeListed(std::string_view name) {
    return isProfileKey(name) && !equalNoCase(name, pszINIChannelMap);
}

bool isMapName(std::string_view name) {
    return name.size() <= longestMapName && isProfileSection(name) && canBeListed(name);
}

std::string_view firstWord(std::string_view text) {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_first_of(blanks));
}

// The last of several lines with one key counts, in the place of the first.
std::vector<ProfileEntry> mapEntries(std::istream& defn) {
    std::vector<ProfileEntry> entries;
    std::unordered_map<std::string, std::size_t> places;
    std::string text;
    while (readProfileLine(defn, text, longestMapLine)) {
        const ProfileLine line = splitProfileLine(text);
        const std::string value(firstWord(line.value));
        if (line.kind != ProfileLine::Kind::entry || !isProfileKey(line.name) || value.empty())
            continue;
        const auto [place, isNew] = places.try_emplace(lowerCase(line.name), entries.size());
        if (isNew)
            entries.push_back({std::string(line.name), value});
        else
            entries[place->second].value = value;
    }
    return entries;
}

// Why an entry of a map is ignored; empty when it counts.
std::string whyIgnored(const MappedChannel& entry, int names, bool isNew) {
    if (names < 2)
        return "a name has two parts, as in 'C3-Ref'";
    if (!isNew)
        return "the name comes a second time";
    if (entry.channel < 0 || entry.channel >= mostChannels)
        return "not a channel number from 1 to " + std::to_string(mostChannels);
    return {};
}

std::string changedName(std::string name) {
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return std::string_view("=|\r\n\0", 5).find(c) != std::string_view::npos; },
        '_');
    if (name.starts_with(';') || name.starts_with('['))
        name.front() = '_';
    return name;
}

bool isDerivation(const std::string& name) {
    char grid1[gridNameSize];
    char grid2[gridNameSize];
    return ParseG1G2(name.c_str(), grid1, grid2, nullptr) == 2;
}

} // namespace

std::optional<ChannelMap> parseChannelMap(std::istream& stream, std::string_view section) {
    constexpr std::size_t mostSentences = 8;
    ChannelMap map;
    std::unordered_set<std::string> seen;
    bool hasKeys = false;
    std::size_t ignored = 0;
    forEachProfileEntry(stream, section, [&](const ProfileLine& line) {
        hasKeys = true;
        MappedChannel entry;
        const std::string key(line.name);
        const int number = profileInt(line.value, 0);
        entry.channel = number - 1;
        const int names = ParseG1G2(key.c_str(), entry.grid1, entry.grid2, nullptr);
        const bool isNew = names == 2 && seen.insert(lowerCase(line.name)).second;
        const std::string reason = whyIgnored(entry, names, isNew);
        if (reason.empty())
            map.channels.push_back(entry);
        else if (number < 1 || key != defaultChannelName(static_cast<std::size_t>(number) - 1))
            if (++ignored <= mostSentences)
                map.ignored.push_back("channel map: '" + key.substr(0, derivationNameSize) + "=" +
                                      std::string(line.value.substr(0, derivationNameSize)) +
                                      "' is ignored, " + reason);
        return true;
    });
    if (ignored > mostSentences)
        map.ignored.push_back("channel map: " + std::to_string(ignored - mostSentences) +
                              " more entries are ignored");
    return hasKeys ? std::optional(std::move(map)) : std::nullopt;
}

std::vector<std::string> channelMapKeys(const std::vector<std::string>& names,
                                        std::string_view reference) {
    const std::string joined =
        "-" + (reference.empty() ? "Ref" : changedName(std::string(reference)));
    const std::string notScalp = "-Ref"; // what the others were recorded against is not known
    std::vector<std::string> keys;
    std::unordered_set<std::string> used;
    std::unordered_map<std::string, int> copies;
    for (const std::string& name : names) {
        const std::string unnamed = defaultChannelName(keys.size());
        std::string wanted = changedName(name);
        if (!isDerivation(wanted)) {
            // "C3-" is C3 against what is not told.
            wanted.resize(
                std::min<std::size_t>(wanted.find_last_not_of('-') + 1, gridNameSize - 1));
            wanted += IndexOf1020(wanted.c_str()) < 0 ? notScalp : joined;
        }
        if (name == unnamed || !isDerivation(wanted)) {
            keys.push_back(unnamed);
            continue;
        }
        std::string key = wanted;
        for (int& copy = copies.try_emplace(lowerCase(wanted), 1).first->second;
             !used.insert(lowerCase(key)).second;)
            key = std::to_string(++copy) + "_" + wanted;
        keys.push_back(key);
    }
    return keys;
}

std::optional<std::string> channelMapFileText() { return readProfileFile(szINIUnkDataFile); }

std::vector<std::string> storedChannelMaps() {
    std::istringstream stream(channelMapFileText().value_or(""));
    std::string names(nameListSize, '\0');
    const int used =
        GetLocalProfileString(pszINIChannelMap, nullptr, "", names.data(), nameListSize, stream);
    return splitWords(std::string_view(names).substr(0, static_cast<std::size_t>(used)), '\0');
}

bool storeChannelMap(std::string_view name, std::istream& defn) {
    const auto text = streamText(defn, static_cast<std::size_t>(longestProfileFile));
    if (!isMapName(name) || !text)
        return false;
    std::istringstream lines(*text);
    const std::vector<ProfileEntry> entries = mapEntries(lines);
    return editProfileFile(szINIUnkDataFile, [&](ProfileDocument& file) {
        return file.setKey(pszINIChannelMap, name, "") && file.setSection(name, entries);
    });
}

bool deleteStoredChannelMap(std::string_view name) {
    // Longer names than ours stand in lists that others have written.
    if (!canBeListed(name))
        return true;
    return editProfileFile(szINIUnkDataFile, [name](ProfileDocument& file) {
        file.deleteKey(pszINIChannelMap, name);
        file.deleteSection(name);
        return true;
    });
}

bool writeStoredChannelMap(std::string_view name, std::ostream& stream) {
    std::istringstream file(channelMapFileText().value_or(""));
    std::string text = "[" + std::string(name) + "]\n";
    if (!canBeListed(name) || !forEachProfileEntry(file, name, [&text](const ProfileLine& line) {
            text.append(line.name).append("=").append(line.value).append("\n");
            return true;
        }))
        return false;
    writeText(stream, text);
    return true;
}

} // namespace kvsig
