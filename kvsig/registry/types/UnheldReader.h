#pragma once

#include "kvsig/util/Export.h"

#include <memory>

namespace kvsig {

class IDataReader;

/// Destroys a reader that nobody holds a reference to yet, by taking and dropping one; of a pair
/// the members too.
struct KVSIG_API DestroyUnheld {
    void operator()(IDataReader* reader) const; ///< Does so; null is ignored.
};

/// A reader between its making and its first AddRef().
using UnheldReader = std::unique_ptr<IDataReader, DestroyUnheld>;

} // namespace kvsig
