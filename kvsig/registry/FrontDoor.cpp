#include "kvsig/registry/FrontDoor.h"

#include "kvsig/kernel/DataReader.h"
#include "kvsig/readers/BDFReader.h"
#include "kvsig/readers/EDF90Reader.h"
#include "kvsig/readers/LifelinesReader.h"
#include "kvsig/readers/TelefactorEDFReader.h"
#include "kvsig/registry/FormatTable.h"
#include "kvsig/util/File.h"
#include "kvsig/util/Text.h"

#include <memory>

namespace kvsig {
namespace {

std::unique_ptr<DataReader> newReader(int type) {
    switch (type) {
    case 6:
        return std::make_unique<EDF90Reader>();
    case 41:
        return std::make_unique<LifelinesReader>();
    case 47:
        return std::make_unique<TelefactorEDFReader>();
    case 48:
        return std::make_unique<BDFReader>();
    default:
        return nullptr;
    }
}

std::string undetected(const char* path) {
    std::string reason;
    if (!File().open(path, &reason))
        return reason;
    return "not a recording of a known format: the first 8 bytes are neither EDF's nor BDF's "
           "version mark";
}

} // namespace

bool KrnlIsReadable(int type) { return formatByType(type) != nullptr; }

int DetectFileType(const char* path) {
    if (EDF90Reader::isFileType(path))
        return 6;
    return BDFReader::isFileType(path) ? 48 : 0;
}

ReaderPtr openReader(const char* path, int type, std::string* error) {
    const auto fail = [error](const std::string& sentence) {
        if (error)
            *error = sentence;
        return ReaderPtr();
    };
    const std::string prefix = std::string(viewOf(path)) + ": ";
    const int found = type != 0 ? type : DetectFileType(path);
    if (found == 0)
        return fail(prefix + undetected(path));
    std::unique_ptr<DataReader> made = newReader(found);
    if (!made)
        return fail(prefix + "this build does not read recordings of type " +
                    std::to_string(found));
    DataReader* opened = made.get();
    ReaderPtr reader(made.release());
    reader->setFileType(found);
    if (!reader->open(path))
        return fail(opened->lastErrorText());
    return reader;
}

} // namespace kvsig
