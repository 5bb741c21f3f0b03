#pragma once

#include "kvsig/montage/names/Derivation.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Channel maps: sections of INI-style texts whose keys are channel names ("C3-A2") and whose
/// values are channel numbers from 1. Named maps are kept in a shared file, "kvunkdat.ini" in the
/// current directory; its section "[ChannelMap]" lists their names as keys, and each of them is a
/// section of its own.
namespace kvsig {

/// The electrodes of a channel, by a channel map.
struct MappedChannel {
    int channel = 0; ///< from 0
    char grid1[gridNameSize] = "";
    char grid2[gridNameSize] = "";
};

/// Channel numbers above this are ignored.
inline constexpr int largestMappedChannel = 32767;

/// The channel map in a section: the entries with two electrode names and a channel number from 1
/// to largestMappedChannel, in their order. A key that comes again is ignored. Nothing when the
/// section is missing or has no keys.
[[nodiscard]] std::optional<std::vector<MappedChannel>> parseChannelMap(std::istream& stream,
                                                                        std::string_view section);

/// The text of the map file; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> channelMapFileText();

/// Names of the stored maps in file order, as far as the list fits 32768 characters.
[[nodiscard]] std::vector<std::string> storedChannelMaps();

/// Stores a map in place of the old one of that name. Lines of `defn` (of which 1024 characters
/// count) that hold a key, "=" and a value become its entries, with the first word of the value;
/// others are left out. False when the name cannot stand in the file (it is empty, longer than 31
/// characters, "ChannelMap", or holds a bracket, "=" or a line end) or the file cannot be written.
[[nodiscard]] bool storeChannelMap(std::string_view name, std::istream& defn);

/// True when the map is gone, even if there was none.
[[nodiscard]] bool deleteStoredChannelMap(std::string_view name);

/// Writes "[name]" and the map's lines; false when it is not stored.
[[nodiscard]] bool writeStoredChannelMap(std::string_view name, std::ostream& stream);

} // namespace kvsig
