#include "kvsig/readers/SnapshotReader.h"

namespace kvsig {

SnapshotReader::SnapshotReader() { DataReader::setFileType(39); }

} // namespace kvsig
