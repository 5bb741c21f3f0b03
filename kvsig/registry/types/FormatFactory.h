#pragma once

#include "kvsig/registry/types/DRFactory.h"
#include "kvsig/registry/types/TypeTable.h"

namespace kvsig {

/// The record of a format that is not built into the registry: its reader comes from create().
class FormatFactory : public DRFactory {
  public:
    explicit FormatFactory(const TypeRow& row);
    /// The record of the row of that name, which must stand in the type table.
    explicit FormatFactory(const char* rowName);
    /// A new reader of the format's class; the file name is not looked at.
    IDataReader* create(const char* fileName) override;
};

} // namespace kvsig
