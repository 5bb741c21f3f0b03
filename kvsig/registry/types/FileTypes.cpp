#include "kvsig/registry/types/FileTypes.h"

#include "kvsig/registry/types/DataReaderManager.h"

namespace kvsig {

int KrnlGetFileTypeFlag() { return dataReaderManager().getFileTypeFlag(); }
void KrnlSetFileTypeFlag(int mode) { dataReaderManager().setFileTypeFlag(mode); }
int* KrnlGetFileTypes() { return dataReaderManager().getFileTypes(); }
const char** KrnlGetFileTypeStrings() { return dataReaderManager().getFileTypeStrings(); }
int KrnlGetFileType(const char* typeName) { return dataReaderManager().getFileType(typeName); }

int KrnlGetFileTypeName(ReaderType type, char* buffer) {
    return dataReaderManager().getFileTypeName(type, buffer);
}

const char* GetPartnerTag(int type) { return dataReaderManager().getPartnerTag(type); }

unsigned long GetDataReaderStaticFlag(int type, unsigned long mask) {
    return dataReaderManager().getStaticFlags(type) & mask;
}

std::vector<const char*> GetDataReaderSortOrder() { return dataReaderManager().getSortOrder(); }

void SetDataReaderSortOrder(const std::vector<const char*>& names) {
    dataReaderManager().setSortOrder(names);
}

std::string typeNameOf(ReaderType type) {
    if (isPairType(type))
        return typeNameOf(firstOfPair(type)) + "+" + typeNameOf(secondOfPair(type));
    switch (type) {
    case interleavedType:
        return "Interleaved";
    case snapshotType:
        return "SnapshotData";
    case pushableType:
        return "PushableData";
    default:
        break;
    }
    char name[DataReaderManager::typeNameSize];
    KrnlGetFileTypeName(type, name);
    return name;
}

} // namespace kvsig
