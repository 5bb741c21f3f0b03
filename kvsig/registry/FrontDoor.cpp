#include "kvsig/registry/FrontDoor.h"

#include "kvsig/kernel/DataReader.h"
#include "kvsig/readers/SyncReader.h"
#include "kvsig/registry/Allocation.h"
#include "kvsig/registry/Layout.h"
#include "kvsig/util/Text.h"

namespace kvsig {
namespace {

// A base of its own, so that the members outlive the pair that closes them.
struct PairMembers {
    ReaderPtr first;
    ReaderPtr second;
};

class OwningPair final : private PairMembers, public SyncReader {
  public:
    explicit OwningPair(const SyncReader& pair)
        : PairMembers{ReaderPtr(pair.first()), ReaderPtr(pair.second())},
          SyncReader(pair.first(), pair.second()) {}
};

// The members of the pair that allocation made are from now on the new pair's.
ReaderPtr owned(UnheldReader reader) {
    auto* pair = dynamic_cast<SyncReader*>(reader.get());
    if (!pair)
        return ReaderPtr(reader.release());
    ReaderPtr owning(new OwningPair(*pair));
    owning->setFileName(pair->fileName());
    const ReaderPtr dropped(reader.release());
    return owning;
}

std::string openError(IDataReader& reader, const std::string& path) {
    if (auto* single = dynamic_cast<DataReader*>(&reader)) {
        // What a layout says may be what is wrong with the recording that it leads to.
        const bool isDescribed = single->filePath() != path;
        return (isDescribed ? path + ": " : "") + single->lastErrorText();
    }
    if (auto* pair = dynamic_cast<SyncReader*>(&reader))
        return pair->lastErrorText();
    return path + ": cannot be opened";
}

std::string openPath(IDataReader& reader) {
    if (auto* single = dynamic_cast<DataReader*>(&reader))
        return single->filePath();
    return reader.fileName();
}

// Raw data that was opened in place of the layout that describes it.
std::string layoutHint(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    const std::string layout = path.substr(0, dot) + ".lay";
    return layout != path && isLayoutFile(layout.c_str())
               ? "; the layout " + layout + " describes a recording"
               : std::string();
}

} // namespace

ReaderPtr openReader(const char* path, int type, std::string* error) {
    const auto fail = [error](const std::string& sentence) {
        if (error)
            *error = sentence;
        return ReaderPtr();
    };
    const std::string file(viewOf(path));
    const int found = type != noReaderType ? type : DetectFileType(path);
    if (found == noReaderType)
        return fail(undetectedReason(path) + layoutHint(file));
    std::string reason;
    CString name = file;
    UnheldReader made = allocReader(found, name, reason);
    if (!made)
        return fail(file + ": " + reason);
    ReaderPtr reader = owned(std::move(made));
    if (!reader->open(openPath(*reader).c_str()))
        return fail(openError(*reader, file) +
                    (type == noReaderType && !KrnlIsReadable(found) ? layoutHint(file) : ""));
    return reader;
}

} // namespace kvsig
