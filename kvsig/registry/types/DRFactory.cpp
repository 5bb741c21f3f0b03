#include "kvsig/registry/types/DRFactory.h"

namespace kvsig {

IDataReader* DRFactory::create(const char*) { return nullptr; }

} // namespace kvsig
