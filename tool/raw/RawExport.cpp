#include "tool/raw/RawExport.h"

#include "kvsig/util/ByteOrder.h"
#include "kvsig/util/OutputFile.h"
#include "kvsig/util/Saturate.h"
#include "tool/RowStream.h"
#include "tool/Words.h"
#include "tool/raw/LayoutText.h"
#include "tool/raw/RawScale.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace kvsig::tool {
namespace {

/// Frames of 16-bit little-endian counts, channel within sample.
class FrameWriter {
  public:
    FrameWriter(OutputFile& file, std::size_t channels) : m_file(file), m_channels(channels) {}

    void start(long samples) {
        m_bytes.assign(static_cast<std::size_t>(samples) * m_channels * 2, std::byte{0});
    }
    void put(long sample, std::size_t channel, std::int16_t count) {
        storeLittle16(
            m_bytes.data() + (static_cast<std::size_t>(sample) * m_channels + channel) * 2, count);
    }
    bool write() { return m_file.write(m_bytes.data(), m_bytes.size()); }

  private:
    OutputFile& m_file;
    std::size_t m_channels;
    std::vector<std::byte> m_bytes;
};

bool writeCounts(const Recording& recording, const Rows& rows, SampleRange range,
                 const RawScale& scale, FrameWriter& frames, LongWork& work) {
    const long window = windowLengthFor(rows.rows(), range);
    std::vector<std::int32_t> counts(static_cast<std::size_t>(window));
    for (long first = range.first; first <= range.last; first += window) {
        const SampleRange part{first, std::min(range.last, first + window - 1)};
        frames.start(part.length());
        for (std::size_t row = 0; row < rows.rows().size(); ++row) {
            const Recording::Place place = recording.placeOf(rows.rows()[row].channel);
            place.reader->getRawData(place.channel, part.first, part.last, counts.data());
            for (long i = 0; i < part.length(); ++i)
                frames.put(i, row,
                           saturate<std::int16_t>(counts[static_cast<std::size_t>(i)] *
                                                  scale.multipliers[row]));
        }
        if (!goOn(work, part, range) || !frames.write())
            return false;
    }
    return true;
}

bool writeRounded(const Rows& rows, SampleRange range, const RawScale& scale, FrameWriter& frames,
                  LongWork& work) {
    RowStream stream(rows.rows(), range);
    while (stream.next()) {
        frames.start(stream.window().length());
        for (std::size_t row = 0; row < rows.rows().size(); ++row)
            for (long i = 0; i < stream.window().length(); ++i)
                frames.put(i, row,
                           saturate<std::int16_t>(std::round(
                               static_cast<double>(stream.values(row)[i]) / scale.calibration)));
        if (!goOn(work, stream.window(), range) || !frames.write())
            return false;
    }
    return true;
}

} // namespace

std::string layoutPathFor(const std::string& dataPath) {
    const std::size_t dot = dataPath.rfind('.');
    const std::size_t slash = dataPath.rfind('/');
    const bool hasEnding =
        dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return (hasEnding ? dataPath.substr(0, dot) : dataPath) + ".lay";
}

bool exportRaw(const Recording& recording, const Rows& rows, SampleRange range,
               const RawExportOptions& options, LongWork& work) {
    const auto fail = [&](const std::string& reason) {
        complain(work.interrupted() ? recording.path + ": interrupted, nothing was written"
                                    : reason);
        return false;
    };
    bool done = false;
    const RawScale scale = rawScaleFor(recording, rows, range, options.filtered, work, done);
    OutputFile data;
    if (!done || !data.open(options.output.c_str()))
        return fail(options.output + ": " + data.error());
    FrameWriter frames(data, rows.rows().size());
    const bool written = scale.isExact() ? writeCounts(recording, rows, range, scale, frames, work)
                                         : writeRounded(rows, range, scale, frames, work);
    if (!written)
        return fail(options.output + ": " + data.error());
    const std::string layoutPath = layoutPathFor(options.output);
    OutputFile layout;
    if (!layout.open(layoutPath.c_str()) ||
        !layout.write(layoutText(recording, rows, range, scale.calibration, options.output,
                                 options.showPatient)))
        return fail(layoutPath + ": " + layout.error());
    if (!data.commit())
        return fail(options.output + ": " + data.error());
    if (!layout.commit())
        return fail(layoutPath + ": " + layout.error());
    for (const std::string& loss : scale.losses)
        remark(recording.path + ": " + loss);
    return true;
}

} // namespace kvsig::tool
