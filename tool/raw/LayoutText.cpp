#include "tool/raw/LayoutText.h"

#include "kvsig/kernel/AttributeFile.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/NeighbourFile.h"

#include <algorithm>
#include <set>
#include <sstream>

namespace kvsig::tool {
namespace {

// A map's key is a derivation of two names, without '=' inside and no ';' or '[' in front.
std::string mapName(const std::string& name, IDataReader& reader) {
    std::string text = name;
    std::replace(text.begin(), text.end(), '=', '_');
    if (text.starts_with(';') || text.starts_with('['))
        text.front() = '_';
    char grid1[gridNameSize] = "";
    char grid2[gridNameSize] = "";
    if (ParseG1G2(text.c_str(), grid1, grid2, nullptr) == 2)
        return text;
    const std::string reference = reader.refGrid();
    return text + "-" + (reference.empty() ? "Ref" : reference);
}

// Equal keys would name one channel twice and the other not at all.
std::vector<std::string> mapNames(IDataReader& reader, const std::vector<Row>& rows) {
    std::vector<std::string> names;
    std::set<std::string> used;
    for (const Row& row : rows) {
        const std::string wanted = mapName(row.name, reader);
        std::string name = wanted;
        for (int copy = 2; !used.insert(name).second; ++copy)
            name = std::to_string(copy) + "_" + wanted;
        names.push_back(name);
    }
    return names;
}

// The clock at the first sample, and every anchor inside the range.
std::vector<SampleTime> anchorsOf(IDataReader& reader, SampleRange range) {
    SampleTime start;
    const double rate = reader.samplingRate();
    start.time = reader.getClockTime(rate > 0 ? static_cast<double>(range.first) / rate : 0.0);
    std::vector<SampleTime> anchors{start};
    for (int i = 0; i < reader.sampleTimeCount(); ++i) {
        SampleTime anchor;
        reader.getSampleTime(i, anchor);
        if (anchor.sample <= range.first || anchor.sample > range.last)
            continue;
        anchor.sample -= static_cast<decltype(anchor.sample)>(range.first);
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
    writeChannelNames(text, "ChannelMap", mapNames(reader, rows));
    if (showPatient)
        writePatientSection(text, *reader.patientRec());
    writeSampleTimes(text, anchorsOf(reader, selection.range));
    return text.str();
}

} // namespace kvsig::tool
