#pragma once

#include "kvsig/montage/names/Derivation.h"
#include "kvsig/util/Limits.h"

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

struct ChannelMap {
    std::vector<MappedChannel> channels;
    /// One sentence for each entry that was ignored, for the first few of them; a last one counts
    /// the rest.
    std::vector<std::string> ignored;
};

/// The channel map in a section: the entries with two electrode names and a channel number from 1
/// to mostChannels, in their order. A key that comes again is ignored. Nothing when the
/// section is missing or has no keys.
[[nodiscard]] std::optional<ChannelMap> parseChannelMap(std::istream& stream,
                                                        std::string_view section);

/// The keys under which a map can hold the names of channels 0, 1, ..., by the rules of
/// writeChannelNames(). A default name stays as it is and names nothing: its channel reads back
/// unnamed.
[[nodiscard]] std::vector<std::string> channelMapKeys(const std::vector<std::string>& names,
                                                      std::string_view reference);

/// The text of the map file; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> channelMapFileText();

/// Names of the stored maps in file order, as far as the list fits 32768 characters.
[[nodiscard]] std::vector<std::string> storedChannelMaps();

/// Stores a map in place of the old one of that name. Lines of `defn` (of which 1024 characters
/// count) that hold a key, "=" and a value become its entries, with the first word of the value;
/// others are left out. False when the name cannot stand in the file (it is empty, longer than 31
/// characters, "ChannelMap", or holds a bracket, "=" or a line end), when `defn` or the file would
/// be larger than a map file may be, or when the file cannot be written.
[[nodiscard]] bool storeChannelMap(std::string_view name, std::istream& defn);

/// True when the map is gone, even if there was none.
[[nodiscard]] bool deleteStoredChannelMap(std::string_view name);

/// Writes "[name]" and the map's lines; false when it is not stored.
[[nodiscard]] bool writeStoredChannelMap(std::string_view name, std::ostream& stream);

} // namespace kvsig
