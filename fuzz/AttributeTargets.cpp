#include "Check.h"
#include "Target.h"
#include "Workspace.h"
#include "kvsig/kernel/AttributeFile.h"
#include "kvsig/readers/EDF90Reader.h"
#include "kvsig/readers/InterleavedReader.h"
#include "kvsig/util/ProfileFile.h"
#include "kvsig/util/ProfileText.h"
#include "support/EdfFile.h"
#include "support/ReadAround.h"

#include <algorithm>
#include <optional>
#include <sstream>

namespace kvsig::fuzz {
namespace {

std::string edfBytes() {
    static const std::string bytes =
        test::EdfFile().signal("EEG C3-A2", 8).signal("EEG C4-A1", 8).records(2).bytes();
    return bytes;
}

// Attribute text for a recording that has a header, and as the header of one that has none.
void readAttributes(std::string_view input) {
    const std::string text(input);
    const WrittenInput recording(edfBytes(), "sample.edf");
    EDF90Reader edf;
    InterleavedReader raw;
    for (DataReader* reader : {static_cast<DataReader*>(&edf), static_cast<DataReader*>(&raw)}) {
        std::istringstream stream(text);
        char type[32];
        static_cast<void>(DataReader::readFileType(stream, type, sizeof type));
        static_cast<void>(reader->readAttributeFile(stream));
        static_cast<void>(reader->open(recording.path.c_str()));
        test::readAround(*reader);
        std::ostringstream written;
        check(reader->writeAttributeFile(written), "an attribute file can be written");
    }
    std::istringstream stream(text);
    std::ostringstream times;
    writeSampleTimes(times, readSampleTimes(stream));
    PatientRec patient{};
    readPatientSection(stream, patient);
    std::ostringstream first, second;
    writePatientSection(first, patient);
    PatientRec copy{};
    std::istringstream back(first.str());
    readPatientSection(back, copy);
    writePatientSection(second, copy);
    check(first.str() == second.str(), "a patient that is read back is written the same");
}

// Channel maps of a host and of the map file beside the recording.
void keepChannelMaps(std::string_view input) {
    const std::string text(input);
    const WrittenInput recording(edfBytes(), "sample.edf");
    Workspace::get().write("kvunkdat.ini", text);
    EDF90Reader reader;
    check(reader.open(recording.path.c_str()), "the recording opens");
    const std::vector<std::string> names{std::string(text, 0, text.find('\n')), "ChannelMap",
                                         "(Private)", "Map"};
    for (int i = 0; i < std::min(reader.getChannelMapCount(), 8); ++i) {
        const std::string name = reader.getChannelMapNames(i);
        std::stringstream defn;
        static_cast<void>(reader.getChannelMapDefn(name.c_str(), defn));
        reader.setChannelMapName(name.c_str());
    }
    for (const std::string& name : names) {
        std::istringstream defn(text);
        static_cast<void>(reader.applyChannelMapDefn(name.c_str(), defn));
        if (reader.addChannelMapDefn(name.c_str(), defn)) {
            std::ostringstream stored;
            check(reader.getChannelMapDefn(name.c_str(), stored), "a stored map can be had");
            check(reader.deleteChannelMapDefn(name.c_str()), "a stored map can be deleted");
            check(!reader.getChannelMapDefn(name.c_str(), stored), "a deleted map is gone");
        }
    }
    test::readAround(reader);
}

// The first three lines are a section, a key and a value to set in the rest.
void editProfile(std::string_view input) {
    std::string words[3];
    for (std::string& word : words) {
        word = input.substr(0, input.find('\n'));
        input.remove_prefix(std::min(word.size() + 1, input.size()));
    }
    const std::string text(input);
    const auto& [section, key, value] = words;
    check(ProfileDocument(text).text() == text, "a text that is not edited stays as it is");
    ProfileDocument document(text);
    std::istringstream stream(text);
    char out[64];
    static_cast<void>(GetLocalProfileString(section.c_str(), nullptr, "", out, 64, stream));
    static_cast<void>(GetLocalProfileInt(section.c_str(), key.c_str(), 7, stream));
    static_cast<void>(GetLocalProfileDouble(section.c_str(), key.c_str(), 7.0, stream));
    if (document.setKey(section, key, value)) {
        std::istringstream edited(document.text());
        const auto found = profileValue(edited, section, key);
        const std::size_t seen = std::min(value.size(), profileLineLength);
        check(key.size() + value.size() >= profileLineLength || found == value.substr(0, seen),
              "a value that was set is found");
        document.deleteKey(section, key);
        std::istringstream without(document.text());
        check(key.size() >= profileLineLength || !profileValue(without, section, key),
              "a key that was deleted is not found");
    }
    document.deleteSection(section);
    if (isProfileSection(section)) {
        std::istringstream without(document.text());
        check(FindAppName(without, section.c_str()) == 0, "a section that was deleted is gone");
    }
}

} // namespace

std::vector<Target> attributeTargets() {
    const char* const attributes =
        "[FileInfo]\nFile=a.raw\nFileType=Interleaved\nSamplingRate=200\nHeaderLength=0\n"
        "Calibration=1e-1\nWaveformCount=2\nDataType=6\nSampleLag=-1\nChannelMap=Map\n"
        "[ChannelMap]\nFp1-Ref=1\nCh2=2\n[Patient]\nFullName=X Y\nSex=F\nHand=R\n"
        "[SampleTimes]\n0=100.5\n0x10=200\n017=300\n[Montage]\nM=1\n[M]\nFp1-Ref=\n";
    const char* const map = "Map\n[ChannelMap]\nMap=\n[Map]\nC3-A2=2\nC4-A1=1 x\n"
                            "[(Private)]\nF7-Ref=1\n";
    return {{"attributes", "attributes", readAttributes, {attributes}},
            {"channel_map", "attributes", keepChannelMaps, {map}},
            {"profile",
             "attributes",
             editProfile,
             {"S\nk\nv\n; note\r\n[S]\r\nk=1\r\n\r\n[T]\r\nk=2\r\n[s]\r\nK=3\r\n"}}};
}

} // namespace kvsig::fuzz
