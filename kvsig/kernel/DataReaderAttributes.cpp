#include "kvsig/kernel/AttributeFile.h"
#include "kvsig/kernel/ChannelMap.h"
#include "kvsig/kernel/ExportAttributes.h"
#include "kvsig/kernel/ReaderState.h"
#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/ProfileLines.h"
#include "kvsig/util/ProfileText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

// The attribute file of a reader and its channel maps.
namespace kvsig {
namespace {

constexpr const char* defaultMap = "(Default)";
constexpr const char* privateMap = "(Private)";

bool isBuiltin(const char* name, const char* builtin) { return equalNoCase(viewOf(name), builtin); }

} // namespace

bool DataReader::readFileType(std::istream& stream, char* out, int size) {
    return GetLocalProfileString(pszINIFileInfo, "FileType", "", out, size, stream) > 0;
}

bool DataReader::isFileType(const char*) { return false; }

bool DataReader::readAttributeFile(std::istream& stream) {
    const std::string file = profileValue(stream, pszINIFileInfo, "File").value_or("");
    if (viewOf(file.c_str()).empty())
        return false;
    setFileName(file.c_str());
    setSampleLag(
        GetLocalProfileInt(pszINIFileInfo, "SampleLag", saturate<int>(getSampleLag()), stream));

    char name[sizeof m_state->channelMapName];
    GetLocalProfileString(pszINIFileInfo, "ChannelMap", "", name, sizeof name, stream);
    // A map in force keeps its name until another takes its place.
    if (m_state->hasChannelMap == 0)
        copyText(m_state->channelMapName, name);
    std::istringstream maps(channelMapFileText().value_or(""));
    if (name[0] != '\0' && readChannelMap(maps, name))
        copyText(m_state->channelMapName, name);
    if (readChannelMap(stream, pszINIChannelMap))
        copyText(m_state->channelMapName, pszINIChannelMap);
    return true;
}

bool DataReader::writeAttributeFile(std::ostream& stream) {
    const bool raw = fileType() == interleavedType || fileType() == snapshotType;
    const bool mapped = m_state->hasChannelMap != 0;
    const bool ownMap = mapped && equalNoCase(channelMapName(), pszINIChannelMap);
    FileInfo info;
    info.file = filePath();
    info.typeName = typeNameOf(fileType());
    if (raw)
        info.layout = RawLayout{samplingRate(), headerLength(), calibration(0), channelCount(),
                                dataTypeCode()};
    if (hasSampleLag())
        info.sampleLag = getSampleLag();
    if (mapped && !ownMap)
        info.channelMap = channelMapName();
    writeFileInfo(stream, info);
    if (ownMap) {
        writeText(stream, "\n");
        writeChannelNames(stream, pszINIChannelMap, mappedNames());
    }
    if (raw) {
        writePatientSection(stream, *patientRec());
        writeSampleTimes(stream, m_state->timeBase.anchors());
    }
    return !stream.fail();
}

// The stored names: numbers shown in their place are a matter of display.
std::vector<std::string> DataReader::mappedNames() {
    std::vector<std::string> names;
    for (int i = 0; i < channelCount(); ++i)
        if (const ChannelRecord* record = channelRecord(i))
            names.emplace_back(record->name);
    return names;
}

bool DataReader::readChannelMap(std::istream& stream, const char* section) {
    const auto map = parseChannelMap(stream, viewOf(section));
    if (!map)
        return false;
    setDefChannelInfo();
    for (const MappedChannel& entry : *map) {
        // The file may not have been opened yet: the names wait for its channels.
        m_state->channels.growTo(entry.channel + 1);
        ChannelRecord& record = *m_state->channels.find(entry.channel, entry.channel + 1);
        char name[derivationNameSize];
        NameFromG1G2(entry.grid1, entry.grid2, name);
        copyText(record.grid1, entry.grid1);
        copyText(record.grid2, entry.grid2);
        copyText(record.name, name);
    }
    m_state->hasChannelMap = 1;
    updateMapFlags();
    return true;
}

const char* DataReader::builtinChannelMapName(int index) {
    if (index == 0)
        return defaultMap;
    return index == 1 ? privateMap : "";
}

const char* DataReader::getChannelMapName() {
    if (m_state->hasChannelMap == 0)
        return defaultMap;
    return equalNoCase(channelMapName(), pszINIChannelMap) ? privateMap : channelMapName();
}

int DataReader::getChannelMapCount() { return saturate<int>(storedChannelMaps().size() + 2); }

const char* DataReader::getChannelMapNames(int index) {
    if (index < 2)
        return builtinChannelMapName(index);
    const std::vector<std::string> names = storedChannelMaps();
    const auto stored = static_cast<std::size_t>(index) - 2;
    m_state->listedMapName = stored < names.size() ? names[stored] : "";
    return m_state->listedMapName.c_str();
}

bool DataReader::applyChannelMapDefn(const char* name, std::istream& defn) {
    if (isBuiltin(name, defaultMap)) {
        dropChannelMap();
        return loadChannelInfo();
    }
    const bool isPrivate = isBuiltin(name, privateMap);
    if (!readChannelMap(defn, name) && !(isPrivate && readChannelMap(defn, pszINIChannelMap)))
        return false;
    copyText(m_state->channelMapName, isPrivate ? pszINIChannelMap : name);
    return true;
}

bool DataReader::getChannelMapDefn(const char* name, std::ostream& stream) {
    if (isBuiltin(name, defaultMap)) {
        std::vector<std::string> names;
        for (int i = 0; i < channelCount(); ++i)
            names.emplace_back(viewOf(_channelName(i)));
        writeChannelNames(stream, defaultMap, names);
        return true;
    }
    if (!isBuiltin(name, privateMap))
        return writeStoredChannelMap(viewOf(name), stream);
    if (!isBuiltin(getChannelMapName(), privateMap))
        return false;
    writeChannelNames(stream, privateMap, mappedNames());
    return true;
}

bool DataReader::addChannelMapDefn(const char* name, std::istream& defn) {
    if (isBuiltin(name, defaultMap) || isBuiltin(name, privateMap))
        return false;
    return storeChannelMap(viewOf(name), defn);
}

bool DataReader::deleteChannelMapDefn(const char* name) {
    return deleteStoredChannelMap(viewOf(name));
}

int DataReader::hasChannelMap() { return m_state->hasChannelMap; }
const char* DataReader::channelMapName() { return m_state->channelMapName; }

void DataReader::setChannelMapName(const char* name) {
    copyText(m_state->channelMapName, name);
    if (isBuiltin(name, defaultMap)) {
        m_state->hasChannelMap = 0;
        loadChannelInfo();
        return;
    }
    std::istringstream maps(channelMapFileText().value_or(""));
    readChannelMap(maps, name);
}

void DataReader::dropChannelMap() {
    m_state->hasChannelMap = 0;
    m_state->channelMapName[0] = '\0';
}

bool WriteExportAttributeFile(std::ostream& stream, IDataReader* reader, const char* file) {
    if (!reader)
        return false;
    constexpr int littleEndian16 = 0;
    FileInfo info;
    info.file = viewOf(file);
    info.typeName = typeNameOf(interleavedType);
    info.layout = RawLayout{reader->samplingRate(), 0, reader->calibration(0),
                            reader->channelCount(), littleEndian16};
    std::vector<std::string> names;
    for (int i = 0; i < reader->channelCount(); ++i)
        names.emplace_back(viewOf(reader->channelName(i)));
    const PatientRec* patient = reader->patientRec();
    writeFileInfo(stream, info);
    writeText(stream, "\n");
    writeChannelNames(stream, pszINIChannelMap, names);
    writeText(stream, "\n");
    writePatientSection(stream, patient ? *patient : PatientRec{});
    return !stream.fail();
}

} // namespace kvsig
