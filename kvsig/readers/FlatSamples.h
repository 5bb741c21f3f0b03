#pragma once

#include "kvsig/kernel/DataPage.h"
#include "kvsig/readers/FlatRecording.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace kvsig {

/// Where decoded samples go: sample i of channel c to out[i * step + c * apart]. Frames have a step
/// of their width, planes are their length apart.
template <typename Out>
struct FlatTarget {
    Out* out = nullptr;
    std::int64_t step = 1;
    std::int64_t apart = 1;
    int channels = 0; ///< the first so many of the recording's
};

/// Reads samples as a FlatRecording says. Files are read in wide pieces; buffers are kept from one
/// call to the next.
class FlatSamples {
  public:
    /// What is wrong with the description's places in one sentence; empty when all samples are
    /// where it says. Must be asked, and the answer be empty, before anything is read.
    std::string prepare(const FlatRecording& recording);

    [[nodiscard]] std::int64_t count() const { return m_count; }
    /// Whether 16 bits carry all counts.
    [[nodiscard]] bool narrow() const { return m_narrow; }
    /// First sample of every segment.
    [[nodiscard]] const std::vector<std::int64_t>& segmentStarts() const { return m_segmentStarts; }

    /// Whether a channel's samples stand together, apart from those of other channels.
    [[nodiscard]] bool standApart() const { return m_apart; }
    /// The channels of a track, ascending: those of the recording's first `channels`.
    [[nodiscard]] std::span<const int> channelsOf(int track, int channels) const;

    /// Samples `first` and the `count` - 1 behind it, all inside the recording. Returns how many
    /// whole frames could be read.
    template <typename Out>
    std::int64_t read(const FlatRecording& recording, std::int64_t first, std::int64_t count,
                      const FlatTarget<Out>& target);
    /// The same of one track's channels.
    template <typename Out>
    std::int64_t readTrack(const FlatRecording& recording, int track, std::int64_t first,
                           std::int64_t count, const FlatTarget<Out>& target);

  private:
    struct Track {
        std::vector<std::int64_t> pieceStarts; ///< own first sample of every piece
        std::vector<std::int64_t> segmentStarts;
        std::int64_t count = 0;
        std::vector<int> channels; ///< of the recording, ascending
        bool counted = true;       ///< own sample i is the recording's sample i
        int pageBytes = 0;         ///< of a value, where frames are stored as a page holds them
    };
    struct Part;

    std::string prepareTrack(const FlatRecording& recording, std::size_t index);
    template <typename Out>
    std::int64_t readShown(const FlatRecording& recording, int track, std::int64_t first,
                           std::int64_t count, const FlatTarget<Out>& target);
    template <typename Out>
    std::int64_t readOwn(const FlatRecording& recording, int track, std::int64_t first,
                         std::int64_t count, const FlatTarget<Out>& target,
                         std::span<const int> columns);
    template <typename Out>
    std::int64_t readPart(const FlatRecording& recording, const Part& part,
                          const FlatTarget<Out>& target, std::span<const int> columns);

    std::vector<Track> m_tracks;
    std::vector<std::int64_t> m_segmentStarts;
    std::int64_t m_count = 0;
    bool m_narrow = true;
    bool m_apart = false;
    PageBuffer m_bytes;              ///< as they stand in the file
    std::vector<std::int32_t> m_own; ///< samples of a slower track
    std::vector<int> m_columns;
};

} // namespace kvsig
