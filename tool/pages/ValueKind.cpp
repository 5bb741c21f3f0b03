#include "tool/pages/ValueKind.h"

#include "kvsig/registry/types/DataReaderManager.h"
#include "kvsig/registry/types/FileTypes.h"
#include "tool/Recording.h"

#include <algorithm>

namespace kvsig::tool {

ValueKind valueKind(const OptionRow& row) {
    if (!row.choices.empty())
        return ValueKind::choice;
    if (row.value == "FILE" || row.value == "PATH")
        return ValueKind::file;
    if (row.value == "TYPE")
        return ValueKind::type;
    const bool isMontage =
        std::find(row.names.begin(), row.names.end(), "--montage") != row.names.end();
    return isMontage ? ValueKind::montage : ValueKind::other;
}

std::vector<std::string> readableTypes() {
    std::vector<std::string> names;
    for (const DRFactory* factory : dataReaderManager().factories())
        if (KrnlIsReadable(factory->type))
            names.push_back(typeNameOf(factory->type));
    return names;
}

} // namespace kvsig::tool
