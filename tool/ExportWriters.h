#pragma once

#include "tool/Output.h"
#include "tool/RowStream.h"
#include "tool/Rows.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kvsig::tool {

/// What a table shows.
struct TableContent {
    const std::vector<Row>* rows;
    SampleRange range;
    double samplingRate;
    bool raw; ///< integers instead of floats
};

/// Writes a table of samples in one format. Calls return false once the output has failed.
class TableWriter {
  public:
    virtual ~TableWriter() = default;
    virtual bool writeHead() = 0;
    virtual bool writeValues(const RowStream& window, std::size_t rows) = 0;
    virtual bool writeRaw(SampleRange window,
                          const std::vector<std::vector<std::int32_t>>& columns) = 0;
};

/// `format` is csv, tsv or npy.
///
/// csv and tsv: a line "time,<name>,...", then a line for every sample; times in seconds from the
/// sample count. npy: channels x samples, float32, or int32 for raw values, C order.
[[nodiscard]] std::unique_ptr<TableWriter>
makeTableWriter(const std::string& format, Output& output, const TableContent& content);

} // namespace kvsig::tool
