#pragma once

#include "kvsig/readers/InterleavedReader.h"

namespace kvsig {

/// Snapshots of raw data ("SnapshotData"): as interleaved recordings but for the type that their
/// attribute files name.
class KVSIG_API SnapshotReader : public InterleavedReader {
  public:
    SnapshotReader();
};

} // namespace kvsig
