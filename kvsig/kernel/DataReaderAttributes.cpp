#include "kvsig/kernel/AttributeFile.h"
#include "kvsig/kernel/ChannelMap.h"
#include "kvsig/kernel/ChannelTable.h"
#include "kvsig/kernel/ExportAttributes.h"
#include "kvsig/kernel/ReaderState.h"
#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/ProfileLines.h"
#include "kvsig/util/ProfileText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
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

bool DataReader::readDataFileName(std::istream& stream) {
    const std::string file = profileValue(stream, pszINIFileInfo, "File").value_or("");
    if (viewOf(file.c_str()).empty())
        return refuseWithout("File", stream);
    setFileName(file.c_str());
    return true;
}

bool DataReader::readAttributeFile(std::istream& stream) {
    if (!readDataFileName(stream))
        return false;
    setSampleLag(
        GetLocalProfileInt(pszINIFileInfo, "SampleLag", saturate<int>(getSampleLag()), stream));

    char* name = m_state->channelMapName;
    GetLocalProfileString(pszINIFileInfo, "ChannelMap", "", name, sizeof m_state->channelMapName,
                          stream);
    m_state->missingMap.clear();
    if (name[0] != '\0')
        useStoredMap(name);
    if (readChannelMap(stream, pszINIChannelMap))
        copyText(m_state->channelMapName, pszINIChannelMap);
    return true;
}

bool DataReader::refuseWithout(const char* key, std::istream& stream) {
    std::string what = std::string("the attribute file has no ") + key + " in its section FileInfo";
    forEachProfileEntry(stream, pszINIFileInfo, [&](const ProfileLine& line) {
        const std::size_t end = line.name.find_last_not_of(" \t") + 1;
        const bool blanks = end < line.name.size() && equalNoCase(line.name.substr(0, end), key);
        if (blanks)
            what += " (there is one with blanks in front of its '=')";
        return !blanks;
    });
    // The file's name is one of the things that may be missing.
    setLastError(2);
    m_state->errorText = what;
    logMessage(logWarning, what);
    return false;
}

bool DataReader::writeAttributeFile(std::ostream& stream) {
    const bool raw = fileType() == interleavedType || fileType() == snapshotType;
    const bool mapped = m_state->hasChannelMap != 0;
    const bool named = mapped && !isBuiltin(getChannelMapName(), privateMap);
    // A name leads back to a stored map alone. The names of any other are written out too, and so
    // are those that an attribute file gave to a raw recording: they stand nowhere else.
    const bool stored = named && !m_state->storedMapName.empty() &&
                        equalNoCase(channelMapName(), m_state->storedMapName);
    const bool ownNames = mapped ? !stored : m_state->keptNamesGiven;
    FileInfo info;
    info.file = filePath();
    info.typeName = typeNameOf(fileType());
    if (raw)
        info.layout = RawLayout{samplingRate(), headerLength(), calibration(0), channelCount(),
                                dataTypeCode()};
    if (hasSampleLag())
        info.sampleLag = getSampleLag();
    if (named)
        info.channelMap = channelMapName();
    writeFileInfo(stream, info);
    if (ownNames) {
        writeText(stream, "\n");
        writeChannelNames(stream, pszINIChannelMap, storedNames(), refGrid());
    }
    if (raw) {
        writePatientSection(stream, *patientRec());
        writeSampleTimes(stream, m_state->timeBase.anchors());
    }
    return !stream.fail();
}

// The stored names: numbers shown in their place are a matter of display.
std::vector<std::string> DataReader::storedNames() {
    std::vector<std::string> names;
    for (int i = 0; i < channelCount(); ++i)
        if (const ChannelRecord* record = channelRecord(i))
            names.emplace_back(record->name);
    return names;
}

void DataReader::useStoredMap(const char* name) {
    std::istringstream maps(channelMapFileText().value_or(""));
    if (readChannelMap(maps, name))
        m_state->storedMapName = viewOf(name);
    else if (!viewOf(name).empty() && !isBuiltin(name, privateMap) && !isBuiltin(name, defaultMap))
        m_state->missingMap = viewOf(name);
}

bool DataReader::readChannelMap(std::istream& stream, const char* section) {
    const auto map = parseChannelMap(stream, viewOf(section));
    if (!map)
        return false;
    setDefChannelInfo();
    m_state->storedMapName.clear();
    m_state->missingMap.clear();
    m_state->mapNotes = map->ignored;
    m_state->mappedChannels = 0;
    for (const MappedChannel& entry : map->channels) {
        m_state->mappedChannels = std::max(m_state->mappedChannels, entry.channel + 1);
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

void DataReader::reportIgnoredNames() {
    if (!m_state->missingMap.empty())
        report(OpenFinding::Severity::note, "channel map: none called '" + m_state->missingMap +
                                                "' names channels in " + szINIUnkDataFile +
                                                " of the current folder");
    if (m_state->hasChannelMap == 0)
        return;
    for (const std::string& note : m_state->mapNotes)
        report(OpenFinding::Severity::note, note);
    if (m_state->mappedChannels > channelCount())
        report(OpenFinding::Severity::note,
               "channel map: it names channel " + std::to_string(m_state->mappedChannels) +
                   ", the recording has " + std::to_string(channelCount()));
    // A map that leaves channels out takes their own names away and gives them none.
    int lost = 0;
    for (int i = 0; i < channelCount(); ++i) {
        const std::string unnamed = defaultChannelName(static_cast<std::size_t>(i));
        const ChannelRecord* record = channelRecord(i);
        const std::string own(viewOf(_channelName(i)));
        if (record && record->name == unnamed && !own.empty() && own != unnamed)
            ++lost;
    }
    if (lost > 0)
        report(OpenFinding::Severity::note,
               "channel map: it names " + std::to_string(channelCount() - lost) + " of " +
                   std::to_string(channelCount()) +
                   " channels; the others are called by their numbers, not by their own names");
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

int DataReader::getChannelMapCount() {
    m_state->listedMaps = storedChannelMaps();
    return saturate<int>(m_state->listedMaps->size() + 2);
}

const char* DataReader::getChannelMapNames(int index) {
    if (index < 2)
        return builtinChannelMapName(index);
    if (!m_state->listedMaps)
        m_state->listedMaps = storedChannelMaps();
    const auto stored = static_cast<std::size_t>(index) - 2;
    return stored < m_state->listedMaps->size() ? (*m_state->listedMaps)[stored].c_str() : "";
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
        std::vector<std::string> names(static_cast<std::size_t>(std::max<int>(channelCount(), 0)));
        for (std::size_t i = 0; i < names.size(); ++i)
            names[i] = viewOf(_channelName(static_cast<int>(i)));
        // The reference in force may be one that the map has brought.
        const char* reference = m_state->hasChannelMap != 0 ? "" : refGrid();
        writeChannelNames(stream, defaultMap, names, reference);
        return true;
    }
    if (!isBuiltin(name, privateMap))
        return writeStoredChannelMap(viewOf(name), stream);
    if (!isBuiltin(getChannelMapName(), privateMap))
        return false;
    writeChannelNames(stream, privateMap, storedNames(), refGrid());
    return true;
}

bool DataReader::addChannelMapDefn(const char* name, std::istream& defn) {
    if (isBuiltin(name, defaultMap) || isBuiltin(name, privateMap))
        return false;
    mapFileChanges(name);
    return storeChannelMap(viewOf(name), defn);
}

bool DataReader::deleteChannelMapDefn(const char* name) {
    mapFileChanges(name);
    return deleteStoredChannelMap(viewOf(name));
}

// The list is another one now, and the names in force are no longer those of the stored map.
void DataReader::mapFileChanges(const char* name) {
    m_state->listedMaps.reset();
    if (equalNoCase(m_state->storedMapName, viewOf(name)))
        m_state->storedMapName.clear();
}

int DataReader::hasChannelMap() { return m_state->hasChannelMap; }
const char* DataReader::channelMapName() { return m_state->channelMapName; }

void DataReader::setChannelMapName(const char* name) {
    copyText(m_state->channelMapName, name);
    m_state->missingMap.clear();
    if (isBuiltin(name, defaultMap)) {
        m_state->hasChannelMap = 0;
        loadChannelInfo();
        return;
    }
    useStoredMap(name);
}

void DataReader::dropChannelMap() {
    m_state->hasChannelMap = 0;
    m_state->channelMapName[0] = '\0';
    m_state->missingMap.clear();
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
    // The stored names: numbers shown in their place are a matter of display.
    const bool numbers = reader->gridNamesAsNumbers();
    reader->setGridNamesAsNumbers(false);
    std::vector<std::string> names(
        static_cast<std::size_t>(std::max<int>(reader->channelCount(), 0)));
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = viewOf(reader->channelName(static_cast<int>(i)));
    reader->setGridNamesAsNumbers(numbers);
    const PatientRec* patient = reader->patientRec();
    writeFileInfo(stream, info);
    writeText(stream, "\n");
    writeChannelNames(stream, pszINIChannelMap, names, viewOf(reader->refGrid()));
    writeText(stream, "\n");
    writePatientSection(stream, patient ? *patient : PatientRec{});
    return !stream.fail();
}

} // namespace kvsig
