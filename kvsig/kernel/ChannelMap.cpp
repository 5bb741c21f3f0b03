#include "kvsig/kernel/ChannelMap.h"

#include "kvsig/montage/names/ReservedNames.h"
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

constexpr std::size_t longestMapName = 31;
constexpr std::size_t longestDefnLine = 1024;
constexpr int nameListSize = 32768;

// A map named as the list of maps would overwrite it.
bool isMapName(std::string_view name) {
    return name.size() <= longestMapName && isProfileSection(name) && isProfileKey(name) &&
           !equalNoCase(name, pszINIChannelMap);
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
    rewindStream(defn);
    std::string text;
    while (readProfileLine(defn, text, longestDefnLine)) {
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

} // namespace

std::optional<std::vector<MappedChannel>> parseChannelMap(std::istream& stream,
                                                          std::string_view section) {
    std::vector<MappedChannel> map;
    std::unordered_set<std::string> seen;
    bool hasKeys = false;
    forEachProfileEntry(stream, section, [&](const ProfileLine& line) {
        hasKeys = true;
        MappedChannel entry;
        const std::string key(line.name);
        if (ParseG1G2(key.c_str(), entry.grid1, entry.grid2, nullptr) < 2 ||
            !seen.insert(lowerCase(line.name)).second)
            return true;
        const int number = profileInt(line.value, 0);
        entry.channel = number - 1;
        if (number >= 1 && number <= largestMappedChannel)
            map.push_back(entry);
        return true;
    });
    return hasKeys ? std::optional(std::move(map)) : std::nullopt;
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
    if (!isMapName(name))
        return false;
    return editProfileFile(szINIUnkDataFile, [&](ProfileDocument& file) {
        return file.setKey(pszINIChannelMap, name, "") && file.setSection(name, mapEntries(defn));
    });
}

bool deleteStoredChannelMap(std::string_view name) {
    if (!isMapName(name))
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
    if (!isMapName(name) || !forEachProfileEntry(file, name, [&text](const ProfileLine& line) {
            text.append(line.name).append("=").append(line.value).append("\n");
            return true;
        }))
        return false;
    writeText(stream, text);
    return true;
}

} // namespace kvsig
