#include "kvsig/registry/types/FormatFactory.h"

#include "kvsig/registry/types/NewReader.h"

namespace kvsig {

FormatFactory::FormatFactory(const TypeRow& row) {
    type = row.type;
    name = row.name;
    pattern = row.pattern;
    flags = row.listed ? factoryEnabled | factoryListed : factoryEnabled;
}

IDataReader* FormatFactory::create(const char*) { return newReader(type); }

} // namespace kvsig
