#include "tool/raw/RawExport.h"

#include "kvsig/util/ByteOrder.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/OutputFile.h"
#include "kvsig/util/ProfileText.h"
#include "kvsig/util/Saturate.h"
#include "tool/CountStream.h"
#include "tool/RowStream.h"
#include "tool/Words.h"
#include "tool/raw/LayoutText.h"
#include "tool/raw/RawScale.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

namespace kvsig::tool {
namespace {

/// Frames of 16-bit little-endian counts, channel within sample.
class FrameWriter {
  public:
    FrameWriter(Output& output, std::size_t channels) : m_output(output), m_channels(channels) {}

    void start(long samples) {
        m_bytes.assign(static_cast<std::size_t>(samples) * m_channels * 2, std::byte{0});
    }
    void put(long sample, std::size_t channel, std::int16_t count) {
        storeLittle16(
            m_bytes.data() + (static_cast<std::size_t>(sample) * m_channels + channel) * 2, count);
    }
    bool write() {
        return m_output.write(
            {static_cast<const char*>(static_cast<const void*>(m_bytes.data())), m_bytes.size()});
    }

  private:
    Output& m_output;
    std::size_t m_channels;
    std::vector<std::byte> m_bytes;
};

bool writeCounts(const Selection& selection, const RawScale& scale, FrameWriter& frames,
                 LongWork& work) {
    CountStream stream(selection);
    while (stream.next(work)) {
        frames.start(stream.window().length());
        for (std::size_t row = 0; row < stream.columns().size(); ++row) {
            long sample = 0;
            for (const std::int32_t count : stream.columns()[row])
                frames.put(sample++, row, saturate<std::int16_t>(count * scale.multipliers[row]));
        }
        if (!frames.write())
            return false;
    }
    return !work.interrupted();
}

bool writeRounded(const Selection& selection, const RawScale& scale, FrameWriter& frames,
                  LongWork& work) {
    const std::size_t rows = selection.rows.rows().size();
    RowStream stream(selection.rows.rows(), selection.range);
    while (stream.next()) {
        frames.start(stream.window().length());
        for (std::size_t row = 0; row < rows; ++row)
            for (long i = 0; i < stream.window().length(); ++i)
                frames.put(i, row,
                           saturate<std::int16_t>(std::round(
                               static_cast<double>(stream.values(row)[i]) / scale.calibration)));
        if (!goOn(work, stream.window(), selection.range) || !frames.write())
            return false;
    }
    return true;
}

// Whether the layout is that of the data which stands beside it.
bool describes(const std::string& layout, const std::string& dataPath,
               const std::string& dataName) {
    constexpr int longestName = 4096;
    std::error_code failed;
    if (!std::filesystem::is_regular_file(layout, failed) ||
        !std::filesystem::is_regular_file(dataPath, failed))
        return false;
    std::ifstream text(layout, std::ios::binary);
    std::string stored(longestName, '\0');
    stored.resize(static_cast<std::size_t>(
        GetLocalProfileString("FileInfo", "File", "", stored.data(), longestName, text)));
    return baseName(stored) == dataName;
}

} // namespace

std::string layoutPathFor(const std::string& dataPath) {
    const std::size_t dot = dataPath.rfind('.');
    const std::size_t slash = dataPath.rfind('/');
    const bool hasEnding =
        dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return (hasEnding ? dataPath.substr(0, dot) : dataPath) + ".lay";
}

bool isFitForRaw(const Selection& selection, const std::string& dataPath) {
    constexpr long fewestSamples = 3; // of a recording that opens
    const std::string layout = layoutPathFor(dataPath);
    const std::string name = std::filesystem::path(dataPath).filename().string();
    std::error_code failed;
    if (selection.range.length() < fewestSamples)
        complain(selection.recording.path + ": the range has " +
                 std::to_string(selection.range.length()) + " samples; raw data needs at least " +
                 std::to_string(fewestSamples));
    else if (baseName(name) != name || name.find_first_of("\r\n") != std::string::npos)
        complain(dataPath + ": a layout cannot name it (its name holds a backslash, a drive or a "
                            "line end); choose another name");
    else if (std::filesystem::exists(layout, failed) && !describes(layout, dataPath, name))
        complain(dataPath + ": its layout " + layout +
                 " is there and does not describe it; choose another name");
    else if (failed)
        complain(layout + ": " + failed.message());
    else
        return true;
    return false;
}

bool RawExport::writeData(const Selection& selection, Output& output, LongWork& work) {
    if (!chooseRawScale(selection, m_filtered, work, m_scale))
        return false;
    FrameWriter frames(output, selection.rows.rows().size());
    return m_scale.isExact() ? writeCounts(selection, m_scale, frames, work)
                             : writeRounded(selection, m_scale, frames, work);
}

bool RawExport::writeLayout(const Selection& selection, const std::string& dataPath) {
    const std::string path = layoutPathFor(dataPath);
    // A link that led nowhere before the data was written.
    std::error_code ignored;
    if (std::filesystem::equivalent(path, dataPath, ignored)) {
        complain(path + ": is another name of the data " + dataPath + "; no layout is written");
        return false;
    }
    OutputFile layout;
    if (!layout.open(path.c_str()) ||
        !layout.write(layoutText(selection, m_scale.calibration, dataPath, m_showPatient)) ||
        !layout.commit()) {
        complain(path + ": " + layout.error());
        return false;
    }
    for (const std::string& loss : m_scale.losses)
        remark(selection.recording.path + ": " + loss);
    for (const std::string& change : changedNames(selection))
        remark(selection.recording.path + ": " + change);
    return true;
}

} // namespace kvsig::tool
