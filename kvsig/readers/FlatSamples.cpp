#include "kvsig/readers/FlatSamples.h"

#include "kvsig/util/Limits.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace kvsig {
namespace {

constexpr std::int64_t batchBytes = std::int64_t{512} << 10; // what a core's cache holds

std::size_t at(std::int64_t index) { return static_cast<std::size_t>(index); }

// The last entry of an ascending list that starts with 0 and is not above `value`.
std::int64_t lastNotAbove(const std::vector<std::int64_t>& starts, std::int64_t value) {
    return std::upper_bound(starts.begin(), starts.end(), value) - starts.begin() - 1;
}

template <typename Integer>
bool fits(const FlatChannel& channel) {
    return channel.integer.least() - channel.zero >= std::numeric_limits<Integer>::min() &&
           channel.integer.greatest() - channel.zero <= std::numeric_limits<Integer>::max();
}

// Frames in the file are the very bytes of frames in a page.
bool storedLikePages(const FlatTrack& track, const FlatRecording& recording, bool narrow) {
    const int bytes = narrow ? 2 : 4;
    std::int64_t place = 0;
    for (const FlatChannel& channel : recording.channels) {
        const bool bigHost = std::endian::native == std::endian::big;
        const FlatInteger same{bytes, true, bigHost};
        if (channel.place != place || channel.zero != 0 || !(channel.integer == same))
            return false;
        place += bytes;
    }
    return track.together == 1 && track.frameBytes == place;
}

} // namespace

/// Frames of one piece that are read at once: whole groups.
struct FlatSamples::Part {
    std::size_t track;
    std::int64_t piece;
    std::int64_t first; ///< frame in the piece
    std::int64_t count;
};

std::string FlatSamples::prepare(const FlatRecording& recording) {
    *this = FlatSamples();
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max() / 2;
    for (const FlatSegment& segment : recording.segments) {
        if (segment.count < 0 || segment.count > most - m_count)
            return "a segment of " + std::to_string(segment.count) + " samples";
        m_segmentStarts.push_back(m_count);
        m_count += segment.count;
    }
    if (m_count < 1)
        return "it holds no samples";
    for (const FlatChannel& channel : recording.channels)
        m_narrow = m_narrow && fits<std::int16_t>(channel);
    m_tracks.resize(recording.tracks.size());
    for (int c = 0; std::cmp_less(c, recording.channels.size()); ++c)
        m_tracks.at(at(recording.channels[at(c)].track)).channels.push_back(c);
    for (std::size_t i = 0; i < m_tracks.size(); ++i)
        if (std::string fault = prepareTrack(recording, i); !fault.empty())
            return fault;
    return {};
}

std::string FlatSamples::prepareTrack(const FlatRecording& recording, std::size_t index) {
    const FlatTrack& described = recording.tracks[index];
    Track& track = m_tracks[index];
    const std::int64_t size = recording.samples.size();
    if (described.frameBytes < 1 || described.together < 1 ||
        described.together > mostGroupBytes / described.frameBytes)
        return std::to_string(described.together) + " samples of " +
               std::to_string(described.frameBytes) + " bytes stand together";
    for (const FlatPiece& piece : described.pieces) {
        if (piece.offset < 0 || piece.count < 0 ||
            piece.count > wholeFrames(piece.offset, size, described.frameBytes))
            return std::to_string(piece.count) + " samples at offset " +
                   std::to_string(piece.offset) + ", " + std::to_string(described.frameBytes) +
                   " bytes each, leave the file of " + std::to_string(size) + " bytes";
        track.pieceStarts.push_back(track.count);
        track.count += piece.count;
    }
    for (const int c : track.channels) {
        const FlatChannel& channel = recording.channels[at(c)];
        if (channel.place < 0 || channel.place + channel.integer.bytes > described.frameBytes ||
            !fits<std::int32_t>(channel))
            return "channel " + std::to_string(c + 1) + " has no place in a sample of " +
                   std::to_string(described.frameBytes) + " bytes";
    }
    if (!(described.rate >= 0.0) || described.rate > recording.rate)
        return "a channel's sampling rate is " + shortestText(described.rate) + " Hz, above the " +
               shortestText(recording.rate) + " Hz of all";
    track.counted = described.rate == 0.0 || described.rate == recording.rate;
    track.segmentStarts = described.segmentStarts;
    track.segmentStarts.resize(m_segmentStarts.size(), track.count);
    if (described.segmentStarts.empty())
        track.segmentStarts = m_segmentStarts;
    else
        track.counted = track.counted && track.segmentStarts == m_segmentStarts;
    if (track.counted && track.count < m_count)
        return "of " + std::to_string(m_count) + " samples it holds " + std::to_string(track.count);
    track.alike = m_tracks.size() == 1 && storedLikePages(described, recording, m_narrow);
    return {};
}

template <typename Out>
std::int64_t FlatSamples::read(const FlatRecording& recording, std::int64_t first,
                               std::int64_t count, const FlatFrames<Out>& frames) {
    std::int64_t whole = count;
    for (std::size_t i = 0; i < m_tracks.size(); ++i) {
        const auto& channels = m_tracks[i].channels;
        if (channels.empty() || channels.front() >= frames.channels)
            continue;
        if (!m_tracks[i].counted) {
            whole = std::min(whole, readShown(recording, i, first, count, frames));
            continue;
        }
        m_columns.assign(channels.begin(),
                         std::lower_bound(channels.begin(), channels.end(), frames.channels));
        whole = std::min(whole,
                         readOwn(recording, i, first, count, frames.out, frames.step, m_columns));
    }
    return whole;
}

// A track of its own count: sample j of a segment shows own sample floor(j * own rate / rate) of
// it. Where rounding makes a segment's own samples one too few, the last is repeated; what else is
// not held reads as 0.
template <typename Out>
std::int64_t FlatSamples::readShown(const FlatRecording& recording, std::size_t index,
                                    std::int64_t first, std::int64_t count,
                                    const FlatFrames<Out>& frames) {
    const Track& track = m_tracks[index];
    const double rate =
        recording.tracks[index].rate > 0 ? recording.tracks[index].rate : recording.rate;
    const std::int64_t width =
        std::lower_bound(track.channels.begin(), track.channels.end(), frames.channels) -
        track.channels.begin();
    m_columns.clear();
    for (int c = 0; c < width; ++c)
        m_columns.push_back(c);
    for (std::int64_t done = 0; done < count;) {
        const std::int64_t segment = lastNotAbove(m_segmentStarts, first + done);
        const bool last = at(segment) + 1 == m_segmentStarts.size();
        const std::int64_t end = last ? m_count : m_segmentStarts[at(segment + 1)];
        const std::int64_t ownStart = track.segmentStarts[at(segment)];
        const std::int64_t ownEnd = last ? track.count : track.segmentStarts[at(segment + 1)];
        const std::int64_t from = first + done - m_segmentStarts[at(segment)];
        const std::int64_t part = std::min(count - done, end - first - done);
        // Multiplied first: of whole rates the product is exact.
        const auto own = [&](std::int64_t shown) {
            const double place = std::floor(static_cast<double>(shown) * rate / recording.rate);
            const std::int64_t sample = ownStart + saturate<std::int64_t>(place);
            return sample == ownEnd && ownEnd > ownStart ? sample - 1 : sample;
        };
        const std::int64_t lowest = own(from);
        const std::int64_t held = std::clamp<std::int64_t>(
            std::min({own(from + part - 1) + 1, ownEnd, track.count}) - lowest, 0, part);
        m_own.assign(at(held * width), 0);
        if (held > 0 &&
            readOwn(recording, index, lowest, held, m_own.data(), width, m_columns) < held)
            return done;
        for (std::int64_t i = 0; i < part; ++i) {
            const std::int64_t row = own(from + i) - lowest;
            Out* frame = frames.out + (done + i) * frames.step;
            for (std::int64_t c = 0; c < width; ++c)
                frame[track.channels[at(c)]] =
                    row >= held ? Out{0} : static_cast<Out>(m_own[at(row * width + c)]);
        }
        done += part;
    }
    return count;
}

template <typename Out>
std::int64_t FlatSamples::readOwn(const FlatRecording& recording, std::size_t index,
                                  std::int64_t first, std::int64_t count, Out* out,
                                  std::int64_t step, const std::vector<int>& columns) {
    const FlatTrack& described = recording.tracks[index];
    const Track& track = m_tracks[index];
    const std::int64_t together = described.together;
    const std::int64_t batch =
        std::max<std::int64_t>(batchBytes / (described.frameBytes * together), 1) * together;
    std::int64_t done = 0;
    std::int64_t piece = lastNotAbove(track.pieceStarts, first);
    while (done < count && std::cmp_less(piece, described.pieces.size())) {
        const std::int64_t within = first + done - track.pieceStarts[at(piece)];
        const std::int64_t left = described.pieces[at(piece)].count - within;
        if (left <= 0) {
            ++piece;
            continue;
        }
        // Up to the end of a group, so that later parts begin with one.
        const std::int64_t whole = batch - within % together;
        const Part part{index, piece, within, std::min({left, count - done, whole})};
        const std::int64_t read = readPart(recording, part, out + done * step, step, columns);
        done += read;
        if (read < part.count)
            break;
    }
    return done;
}

template <typename Out>
std::int64_t FlatSamples::readPart(const FlatRecording& recording, const Part& part, Out* out,
                                   std::int64_t step, const std::vector<int>& columns) {
    const FlatTrack& described = recording.tracks[part.track];
    const Track& track = m_tracks[part.track];
    const FlatPiece& piece = described.pieces[at(part.piece)];
    const std::int64_t frameBytes = described.frameBytes;
    const std::int64_t together = described.together;
    const std::int64_t start = part.first / together * together;
    const std::int64_t end =
        std::min((part.first + part.count + together - 1) / together * together, piece.count);
    const std::int64_t offset = piece.offset + start * frameBytes;
    const std::int64_t bytes = (end - start) * frameBytes;
    if (track.alike && step * std::int64_t{sizeof(Out)} == frameBytes)
        return recording.samples.file().readAt(offset, out, bytes) / frameBytes;
    if (!m_bytes.reserve(bytes) ||
        recording.samples.file().readAt(offset, m_bytes.data(), bytes) < bytes)
        return 0;
    // Frames one by one are one group whose samples are a frame apart.
    for (std::int64_t i = part.first; i < part.first + part.count;) {
        const std::int64_t group = together == 1 ? start : i / together * together;
        const std::int64_t length = together == 1 ? end - start : std::min(together, end - group);
        const std::int64_t taken = std::min(group + length, part.first + part.count) - i;
        for (std::size_t c = 0; c < columns.size(); ++c) {
            const FlatChannel& channel = recording.channels[at(track.channels[c])];
            const bool framed = together == 1;
            const std::int64_t channelStart = framed ? channel.place : channel.place * length;
            const std::int64_t apart = framed ? frameBytes : channel.integer.bytes;
            const std::byte* from =
                m_bytes.data() + (group - start) * frameBytes + channelStart + (i - group) * apart;
            decode(FlatSpan{channel.integer, from, apart, taken, channel.zero},
                   out + (i - part.first) * step + columns[c], step);
        }
        i += taken;
    }
    return part.count;
}

template std::int64_t FlatSamples::read(const FlatRecording&, std::int64_t, std::int64_t,
                                        const FlatFrames<std::int16_t>&);
template std::int64_t FlatSamples::read(const FlatRecording&, std::int64_t, std::int64_t,
                                        const FlatFrames<std::int32_t>&);

} // namespace kvsig
