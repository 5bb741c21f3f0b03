#pragma once

#include "kvsig/montage/G1G2Source.h"
#include "kvsig/montage/SourceMontage.h"
#include "tool/ChannelNames.h"
#include "tool/Recording.h"

#include <optional>
#include <string>
#include <vector>

/// Why channels cannot stand in one row.
namespace kvsig::tool {

/// What a channel was recorded against: what it states itself, else what the scalp of its recording
/// has in common. Empty when that is not known.
[[nodiscard]] std::string recordedReference(const Recording& recording, int channel);

/// The one reference that all of the channels were recorded against; an unknown one is the same as
/// another unknown one only. None where they differ, and of no channels.
[[nodiscard]] std::optional<std::string> oneReference(const Recording& recording,
                                                      const std::vector<int>& channels);

/// The channels behind a row's channel 2: that of the reader, those of the montage's average, or
/// none.
[[nodiscard]] std::vector<int> channelsOfReference(const SourceMontage& montage,
                                                   IDataReader& reader, int channel2);
/// All channels of a montage's row, that of its first input in front.
[[nodiscard]] std::vector<int> channelsOfRow(const SourceMontage& montage, IDataReader& reader,
                                             const G1G2Source& row);

/// Why one scale cannot serve a derivation of these channels; empty when it can.
[[nodiscard]] std::string mixFault(const Recording& recording, const ChannelNames& names,
                                   const std::vector<int>& channels);

/// Why these channels cannot stand for their electrodes in a derivation; empty when they can.
[[nodiscard]] std::string referenceFault(const Recording& recording, const ChannelNames& names,
                                         const std::vector<int>& channels);

/// The one or the other of these.
[[nodiscard]] std::string rowFault(const Recording& recording, const ChannelNames& names,
                                   const std::vector<int>& channels);

} // namespace kvsig::tool
