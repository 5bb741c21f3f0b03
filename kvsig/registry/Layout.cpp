#include "kvsig/registry/Layout.h"

#include "kvsig/kernel/DataReader.h"
#include "kvsig/registry/XmlLayout.h"
#include "kvsig/registry/types/ReaderType.h"
#include "kvsig/util/File.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/ProfileText.h"
#include "kvsig/util/Text.h"
#include "kvsig/util/TextFile.h"

#include <filesystem>
#include <sstream>
#include <system_error>

namespace kvsig {
namespace {

constexpr int typeNameBytes = 64;

void resolveDataFile(IDataReader& reader, const std::string& layoutPath) {
    const auto* recording = dynamic_cast<DataReader*>(&reader);
    const std::string stored = recording ? recording->filePath() : reader.fileName();
    const std::string beside = neighbourFile(layoutPath, stored);
    std::error_code failed;
    if (std::filesystem::is_regular_file(beside, failed))
        reader.setFileName(beside.c_str());
}

UnheldReader readerOfText(DataReaderManager& manager, const std::string& text,
                          const std::string& path, std::string& reason) {
    std::istringstream stream(text);
    char typeName[typeNameBytes] = "";
    if (!DataReader::readFileType(stream, typeName, typeNameBytes)) {
        reason = "not a layout: no FileType in a section FileInfo";
        return nullptr;
    }
    const ReaderType type = manager.getFileType(typeName);
    if (isLayoutType(type) || type == noReaderType) {
        reason = std::string("FileType is '") + typeName + "', which is no type of a recording";
        return nullptr;
    }
    CString noName;
    UnheldReader reader = manager.allocate(type, noName, reason);
    if (!reader)
        return nullptr;
    reader->setFileType(type);
    if (!reader->readAttributeFile(stream)) {
        reason =
            std::string("the attributes of a recording of type ") + typeName + " are not complete";
        if (auto* refused = dynamic_cast<DataReader*>(reader.get());
            refused && *refused->lastErrorText() != '\0')
            reason += std::string(": ") + refused->lastErrorText();
        return nullptr;
    }
    resolveDataFile(*reader, path);
    return reader;
}

} // namespace

UnheldReader openLayout(DataReaderManager& manager, const std::string& path, std::string& reason) {
    const auto text = readTextFile(path.c_str(), mostLayoutBytes, &reason);
    return text ? readerOfText(manager, *text, path, reason) : nullptr;
}

UnheldReader openXmlLayout(DataReaderManager& manager, const std::string& path,
                           std::string& reason) {
    const auto text = readXmlLayout(path.c_str(), reason);
    return text ? readerOfText(manager, *text, path, reason) : nullptr;
}

bool isLayoutFile(const char* path) {
    const auto text = readTextFile(path, mostLayoutBytes);
    if (!text)
        return false;
    std::istringstream stream(*text);
    return FindAppName(stream, "FileInfo") != 0;
}

} // namespace kvsig
