#include "kvsig/util/Version.h"

namespace kvsig {

LibraryVersion libraryVersion() { return {KVSIG_VERSION, KVSIG_ABI_VERSION}; }

} // namespace kvsig
