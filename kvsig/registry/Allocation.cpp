#include "kvsig/registry/Allocation.h"

#include "kvsig/kernel/ReaderPtr.h"
#include "kvsig/readers/SyncReader.h"
#include "kvsig/registry/Layout.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/registry/types/NewReader.h"
#include "kvsig/registry/types/TypeTable.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <memory>

namespace kvsig {
namespace {

std::function<bool()>& licenceCheck() {
    static std::function<bool()> check;
    return check;
}

/// Why this thread's last allocation that was not asked for a reason gave no reader.
std::string& lastRefusal() {
    thread_local std::string reason;
    return reason;
}

// A layout file has given its reader the right type and file name already.
void stamp(IDataReader& reader, ReaderType type, const CString& name) {
    if (isLayoutType(type))
        return;
    reader.setFileType(type);
    if (!name.empty())
        reader.setFileName(name.c_str());
}

bool isBuiltIn(ReaderType type) {
    const auto rows = typeTable();
    return std::any_of(rows.begin(), rows.end(),
                       [type](const TypeRow& row) { return row.builtIn && row.type == type; });
}

bool hasNoRow(ReaderType type) {
    return type == interleavedType || type == snapshotType || type == pushableType;
}

} // namespace

void DestroyUnheld::operator()(IDataReader* reader) const {
    auto* pair = dynamic_cast<SyncReader*>(reader);
    const ReaderPtr first(pair ? pair->first() : nullptr);
    const ReaderPtr second(pair ? pair->second() : nullptr);
    // Declared last: a pair closes its members before they go.
    const ReaderPtr dropped(reader);
}

UnheldReader DataReaderManager::allocatePair(int type, CString& name, std::string& reason) {
    const std::size_t star = name.find('*');
    if (star == CString::npos) {
        reason = "a pair is named by both its paths, joined by '*'";
        return nullptr;
    }
    const auto member = [&](ReaderType memberType, CString path) {
        lastRefusal() = "the registry refuses the type " + typeNameOf(memberType);
        UnheldReader reader(allocReader(memberType, path));
        if (!reader)
            reason = lastRefusal();
        return reader;
    };
    const CString left = name.substr(0, star);
    UnheldReader first = member(firstOfPair(type), left);
    if (!first)
        return nullptr;
    UnheldReader second = member(secondOfPair(type), name.substr(star + 1));
    if (!second)
        return nullptr;
    name = left;
    UnheldReader pair(new SyncReader(first.release(), second.release()));
    pair->setFileName(name.c_str());
    return pair;
}

UnheldReader DataReaderManager::allocateSingle(int type, CString& name, std::string& reason) {
    const auto enabledOfType = [type](const DRFactory* f) {
        return f->type == type && f->isEnabled();
    };
    const auto factory = std::find_if(m_factories.begin(), m_factories.end(), enabledOfType);
    const bool found = factory != m_factories.end();
    if (found)
        if (IDataReader* reader = (*factory)->create(name.c_str()))
            return UnheldReader(reader);
    const bool modeAllows = m_fileTypeMode == 1 || m_fileTypeMode == 2 || m_fileTypeMode == 4;
    if (!found && !(hasNoRow(type) && modeAllows)) {
        reason = firstOfType(type) || hasNoRow(type)
                     ? "the type " + typeNameOf(type) + " is switched off by the file-type mode " +
                           std::to_string(m_fileTypeMode)
                     : std::to_string(type) + " is the number of no recording type";
        return nullptr;
    }
    if (type == layoutType)
        return openLayout(*this, name, reason);
    if (type == xmlLayoutType)
        return openXmlLayout(*this, name, reason);
    UnheldReader reader(isBuiltIn(type) || hasNoRow(type) ? newReader(type) : nullptr);
    if (!reader)
        reason = "there is no reader for the type " + typeNameOf(type);
    return reader;
}

UnheldReader DataReaderManager::allocate(int type, CString& name, std::string& reason) {
    return isPairType(type) ? allocatePair(type, name, reason) : allocateSingle(type, name, reason);
}

IDataReader* DataReaderManager::allocate(int type, CString& name) {
    return allocate(type, name, lastRefusal()).release();
}

IDataReader* DataReaderManager::allocReader(int type, CString& name) {
    IDataReader* reader = allocate(type, name);
    if (reader)
        stamp(*reader, type, name);
    return reader;
}

UnheldReader allocReader(ReaderType type, CString& fileName, std::string& reason) {
    UnheldReader reader = dataReaderManager().allocate(type, fileName, reason);
    if (reader)
        stamp(*reader, type, fileName);
    // The check runs in every case, whether there is a reader to guard or not.
    const bool granted = !licenceCheck() || licenceCheck()();
    if (granted || !reader)
        return reader;
    reason = "the licence check refuses to read recordings";
    logMessage(logWarning, fileName + ": " + reason);
    return nullptr;
}

IDataReader* _KrnlAllocReaderEx(ReaderType type, CString& fileName) {
    std::string reason;
    return allocReader(type, fileName, reason).release();
}

IDataReader* _KrnlAllocReaderEx(ReaderType type, const char* fileName) {
    CString copy(viewOf(fileName));
    return _KrnlAllocReaderEx(type, copy);
}

void KrnlSetLicenceCheck(std::function<bool()> check) { licenceCheck() = std::move(check); }

} // namespace kvsig
