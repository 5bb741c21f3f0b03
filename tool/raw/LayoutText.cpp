#include "tool/raw/LayoutText.h"

#include "kvsig/kernel/AttributeFile.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"
#include "tool/Words.h"

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

// What all channels were recorded against; empty where the recordings of a pair differ.
std::string commonReference(const Recording& recording) {
    std::string reference = recording.reader->refGrid();
    for (DataReader* member : recording.members())
        if (!equalNoCase(member->refGrid(), reference))
            return {};
    return reference;
}

void writeNames(std::ostream& text, const Selection& selection) {
    const std::vector<Row>& rows = selection.rows.rows();
    std::vector<std::string> names;
    std::transform(rows.begin(), rows.end(), std::back_inserter(names),
                   [](const Row& row) { return row.name; });
    writeChannelNames(text, "ChannelMap", names, commonReference(selection.recording));
}

// A derivation's parts are cut to the length of electrode names.
std::string nameReadBack(const std::string& written) {
    char grid1[gridNameSize];
    char grid2[gridNameSize];
    char name[derivationNameSize];
    if (ParseG1G2(written.c_str(), grid1, grid2, nullptr) != 2)
        return written;
    NameFromG1G2(grid1, grid2, name);
    return name;
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
    writeNames(text, selection);
    if (showPatient)
        writePatientSection(text, *reader.patientRec());
    writeSampleTimes(text, anchorsOf(selection.recording, selection.range));
    return text.str();
}

std::vector<std::string> changedNames(const Selection& selection) {
    std::stringstream text;
    writeNames(text, selection);
    std::vector<std::string> sentences;
    std::string line;
    std::getline(text, line); // the heading
    for (const Row& row : selection.rows.rows()) {
        std::getline(text, line);
        const std::string read = nameReadBack(line.substr(0, line.rfind('=')));
        if (!read.starts_with(row.name))
            sentences.push_back("the name " + printable(row.name) + " is written as " +
                                printable(read));
    }
    return sentences;
}

} // namespace kvsig::tool
