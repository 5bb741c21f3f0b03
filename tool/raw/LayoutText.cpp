#include "tool/raw/LayoutText.h"

#include "kvsig/kernel/AttributeFile.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace kvsig::tool {
namespace {

// The clock at the first sample, and every anchor inside the range.
std::vector<SampleTime> anchorsOf(const Recording& recording, SampleRange range) {
    IDataReader& reader = *recording.reader;
    SampleTime start;
    const double rate = reader.samplingRate();
    start.time = reader.getClockTime(rate > 0 ? static_cast<double>(range.first) / rate : 0.0);
    std::vector<SampleTime> anchors{start};
    for (int i = 0; i < reader.sampleTimeCount(); ++i) {
        SampleTime anchor;
        reader.getSampleTime(i, anchor);
        const long sample = recording.atCommonRate(anchor.sample);
        if (sample < range.first || sample > range.last)
            continue;
        anchor.sample = saturate<decltype(anchor.sample)>(sample - range.first);
        if (anchor.sample == 0)
            anchors.clear(); // exact, where the clock's elapsed time is rounded
        anchors.push_back(anchor);
    }
    return anchors;
}

} // namespace

std::string layoutText(const Selection& selection, double calibration, const std::string& dataPath,
                       bool showPatient) {
    IDataReader& reader = *selection.recording.reader;
    const std::vector<Row>& rows = selection.rows.rows();
    FileInfo info;
    info.file = baseName(dataPath);
    info.typeName = typeNameOf(interleavedType);
    info.layout =
        RawLayout{reader.samplingRate(), 0, calibration, static_cast<int>(rows.size()), 0};
    std::ostringstream text;
    writeFileInfo(text, info);
    text << '\n';
    std::vector<std::string> names;
    std::transform(rows.begin(), rows.end(), std::back_inserter(names),
                   [](const Row& row) { return row.name; });
    writeChannelNames(text, "ChannelMap", names, reader.refGrid());
    if (showPatient)
        writePatientSection(text, *reader.patientRec());
    writeSampleTimes(text, anchorsOf(selection.recording, selection.range));
    return text.str();
}

} // namespace kvsig::tool
