#include "kvsig/readers/FlatSamples.h"

#include "kvsig/util/Limits.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
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

// Bytes of a value in a page when the track's frames are the very bytes of frames of its channels
// there; else 0.
int bytesAsInPages(const FlatTrack& track, const std::vector<int>& channels,
                   const FlatRecording& recording, bool narrow) {
    const int bytes = narrow ? 2 : 4;
    const FlatInteger same{bytes, true, std::endian::native == std::endian::big};
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const FlatChannel& channel = recording.channels[at(channels[i])];
        if (channel.place != static_cast<std::int64_t>(i) * bytes || channel.zero != 0 ||
            !(channel.integer == same))
            return 0;
    }
    const bool isDense = std::cmp_equal(track.frameBytes, channels.size() * at(bytes));
    return track.together == 1 && isDense ? bytes : 0;
}

} // namespace

/// Frames of one piece that are read at once: whole groups.
struct FlatSamples::Part {
    int track;
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
    for (std::size_t i = 0; i < m_tracks.size(); ++i) {
        if (std::string fault = prepareTrack(recording, i); !fault.empty())
            return fault;
        const std::size_t channels = m_tracks[i].channels.size();
        m_apart = m_apart || (channels > 0 && (channels < recording.channels.size() ||
                                               recording.tracks[i].together > 1));
    }
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
    track.pageBytes = bytesAsInPages(described, track.channels, recording, m_narrow);
    return {};
}

std::span<const int> FlatSamples::channelsOf(int track, int channels) const {
    const std::span<const int> all = m_tracks[at(track)].channels;
    return all.first(at(std::lower_bound(all.begin(), all.end(), channels) - all.begin()));
}

template <typename Out>
std::int64_t FlatSamples::read(const FlatRecording& recording, std::int64_t first,
                               std::int64_t count, const FlatTarget<Out>& target) {
    std::int64_t whole = count;
    for (int i = 0; std::cmp_less(i, m_tracks.size()); ++i)
        whole = std::min(whole, readTrack(recording, i, first, count, target));
    return whole;
}

template <typename Out>
std::int64_t FlatSamples::readTrack(const FlatRecording& recording, int track, std::int64_t first,
                                    std::int64_t count, const FlatTarget<Out>& target) {
    const std::span<const int> channels = channelsOf(track, target.channels);
    if (channels.empty())
        return count;
    return m_tracks[at(track)].counted ? readOwn(recording, track, first, count, target, channels)
                                       : readShown(recording, track, first, count, target);
}

// A track of its own count: sample j of a segment shows own sample floor(j * own rate / rate) of
// it. Where rounding makes a segment's own samples one too few, the last is repeated; what else is
// not held reads as 0.
template <typename Out>
std::int64_t FlatSamples::readShown(const FlatRecording& recording, int index, std::int64_t first,
                                    std::int64_t count, const FlatTarget<Out>& target) {
    constexpr std::int64_t mostValues = 65536; // that are held at a time
    const Track& track = m_tracks[at(index)];
    const double ownRate = recording.tracks[at(index)].rate;
    const double rate = ownRate > 0 ? ownRate : recording.rate;
    const std::span<const int> channels = channelsOf(index, target.channels);
    const auto width = static_cast<std::int64_t>(channels.size());
    const std::int64_t mostAtOnce = std::max<std::int64_t>(mostValues / width, 1);
    m_columns.resize(channels.size());
    std::iota(m_columns.begin(), m_columns.end(), 0);
    for (std::int64_t done = 0; done < count;) {
        const std::int64_t segment = lastNotAbove(m_segmentStarts, first + done);
        const bool last = at(segment) + 1 == m_segmentStarts.size();
        const std::int64_t end = last ? m_count : m_segmentStarts[at(segment + 1)];
        const std::int64_t ownStart = track.segmentStarts[at(segment)];
        const std::int64_t ownEnd = last ? track.count : track.segmentStarts[at(segment + 1)];
        const std::int64_t from = first + done - m_segmentStarts[at(segment)];
        const std::int64_t part = std::min({count - done, end - first - done, mostAtOnce});
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
        if (held > 0 && readOwn(recording, index, lowest, held,
                                FlatTarget<std::int32_t>{m_own.data(), width}, m_columns) < held)
            return done;
        for (std::int64_t i = 0; i < part; ++i) {
            const std::int64_t row = own(from + i) - lowest;
            Out* shown = target.out + (done + i) * target.step;
            for (std::int64_t c = 0; c < width; ++c)
                shown[channels[at(c)] * target.apart] =
                    row >= held ? Out{0} : static_cast<Out>(m_own[at(row * width + c)]);
        }
        done += part;
    }
    return count;
}

template <typename Out>
std::int64_t FlatSamples::readOwn(const FlatRecording& recording, int index, std::int64_t first,
                                  std::int64_t count, const FlatTarget<Out>& target,
                                  std::span<const int> columns) {
    const FlatTrack& described = recording.tracks[at(index)];
    const Track& track = m_tracks[at(index)];
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
        FlatTarget<Out> rest = target;
        rest.out += done * target.step;
        const std::int64_t read = readPart(recording, part, rest, columns);
        done += read;
        if (read < part.count)
            break;
    }
    return done;
}

template <typename Out>
std::int64_t FlatSamples::readPart(const FlatRecording& recording, const Part& part,
                                   const FlatTarget<Out>& target, std::span<const int> columns) {
    const FlatTrack& described = recording.tracks[at(part.track)];
    const Track& track = m_tracks[at(part.track)];
    const FlatPiece& piece = described.pieces[at(part.piece)];
    const std::int64_t frameBytes = described.frameBytes;
    const std::int64_t together = described.together;
    const std::int64_t start = part.first / together * together;
    const std::int64_t end =
        std::min((part.first + part.count + together - 1) / together * together, piece.count);
    const std::int64_t offset = piece.offset + start * frameBytes;
    const std::int64_t bytes = (end - start) * frameBytes;
    const bool areTogether =
        columns.size() == track.channels.size() && (columns.size() == 1 || target.apart == 1);
    if (areTogether && std::cmp_equal(track.pageBytes, sizeof(Out)) &&
        target.step * track.pageBytes == frameBytes) {
        Out* out = target.out + columns.front() * target.apart;
        return recording.samples.file().readAt(offset, out, bytes) / frameBytes;
    }
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
                   target.out + (i - part.first) * target.step + columns[c] * target.apart,
                   target.step);
        }
        i += taken;
    }
    return part.count;
}

template std::int64_t FlatSamples::read(const FlatRecording&, std::int64_t, std::int64_t,
                                        const FlatTarget<std::int16_t>&);
template std::int64_t FlatSamples::read(const FlatRecording&, std::int64_t, std::int64_t,
                                        const FlatTarget<std::int32_t>&);
template std::int64_t FlatSamples::readTrack(const FlatRecording&, int, std::int64_t, std::int64_t,
                                             const FlatTarget<std::int16_t>&);
template std::int64_t FlatSamples::readTrack(const FlatRecording&, int, std::int64_t, std::int64_t,
                                             const FlatTarget<std::int32_t>&);

} // namespace kvsig
