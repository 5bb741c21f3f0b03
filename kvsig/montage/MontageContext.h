#pragma once

#include "kvsig/util/Export.h"

namespace kvsig {

class AvgSource;
class DataSource;

/// What a source asks of the montage that it belongs to.
class KVSIG_API MontageContext {
  public:
    /// The montage's average reference of that index, or null when there is none (any more).
    virtual AvgSource* averageReference(int index) = 0;
    /// Position of a source in the display list, from 0, or -1.
    virtual int rowOf(const DataSource& source) = 0;

  protected:
    ~MontageContext() = default;
};

} // namespace kvsig
