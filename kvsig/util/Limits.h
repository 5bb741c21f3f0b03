#pragma once

#include <cstddef>
#include <cstdint>

/// What a file or a setting may cost, whatever it says of itself. Every ceiling stands here; the
/// widths of fields (names of 16 or 32 characters, paths of 260) stand with the fields, and how far
/// an interface counts (averages, samples before a page) with the interface.
namespace kvsig {

// Samples.

/// Bytes that one page may take; a larger one is refused and its samples read as zeros.
inline constexpr std::int64_t maxPageBytes = std::int64_t{1} << 30;
/// Hertz; no polygraph comes near. Faster recordings open and are reported.
inline constexpr double fastestSamplingRate = 1e7;
/// Bytes of a recording that a search for oddities holds at a time.
inline constexpr std::int64_t mostInspectedBytes = std::int64_t{256} << 20;

// Channels.

/// The interface counts channels in 16 bits; higher numbers in channel maps are ignored.
inline constexpr int mostChannels = 32767;

// Headers of recordings.

/// Segments, starts of segments (or runs of a block) in all channels, and runs of data blocks
/// without a pause: recordings of more are refused, or read in groups of all channels.
inline constexpr std::int64_t mostSegments = 65536;
inline constexpr std::size_t mostSegmentStarts = std::size_t{1} << 22;
inline constexpr std::size_t mostBlockRuns = std::size_t{1} << 20;
/// Bytes of the samples that may stand together, channel by channel.
inline constexpr std::int64_t mostGroupBytes = std::int64_t{64} << 20;
/// Blocks of an index, which may be empty, and packets of channels that are followed.
inline constexpr std::size_t mostIndexBlocks = std::size_t{1} << 20;
inline constexpr std::size_t mostChannelPackets = 65536;
/// Bytes of a patient's record, and of a file with names of electrodes, that are looked at.
inline constexpr std::int64_t mostPatientBytes = std::int64_t{1} << 20;
inline constexpr std::int64_t mostElectrodeFileBytes = std::int64_t{1} << 20;

// Events.

/// Where a list of events ends.
inline constexpr std::size_t mostEvents = std::size_t{1} << 20;
/// Bytes of a packet in a file of events.
inline constexpr std::int64_t longestEventPacket = std::int64_t{1} << 20;
/// Characters of an event's text that are looked at; far more than an event shows.
inline constexpr std::int64_t longestEventText = 1024;

// INI-style texts.

/// Characters of a line that are looked at.
inline constexpr std::size_t profileLineLength = 8192;
/// Larger map files are neither read nor written.
inline constexpr std::int64_t longestProfileFile = std::int64_t{8} << 20;
/// Larger layouts are refused.
inline constexpr std::size_t mostLayoutBytes = std::size_t{16} << 20;
/// Characters of a value that are taken.
inline constexpr std::size_t longestLayoutValue = 4096;
/// Characters of a stored channel map's name, and of a line of its definition.
inline constexpr std::size_t longestMapName = 31;
inline constexpr std::size_t longestMapLine = 1024;

// XML documents; larger and deeper ones are refused.

inline constexpr std::size_t mostXmlBytes = std::size_t{16} << 20;
inline constexpr int mostXmlDepth = 64;

// Filters.

/// Weights of a designed filter; longer ones are not designed.
inline constexpr int mostFilterTaps = 1 << 22;

// Montages.

/// Larger montage files are not read.
inline constexpr std::size_t mostMontageFileBytes = std::size_t{1} << 20;
/// Names that are listed, and montages that one attribute file may hold.
inline constexpr std::size_t mostMontageNames = 4096;
inline constexpr int mostStoredMontages = 4096;
/// Lines of a section, or section names of a file, that are taken.
inline constexpr std::size_t mostMontageEntries = 65536;
/// Rows and averages that are made from one montage of a file; the rest is left out and logged.
inline constexpr int mostMontageRows = 4096;
/// Definitions that are kept as unresolved.
inline constexpr std::size_t mostUnresolved = 4096;

} // namespace kvsig
