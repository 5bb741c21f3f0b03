#include "kvsig/registry/types/FormatFactory.h"

#include "kvsig/registry/types/NewReader.h"

#include <algorithm>
#include <string_view>

namespace kvsig {
namespace {

const TypeRow& rowNamed(std::string_view name) {
    const auto rows = typeTable();
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [name](const TypeRow& each) { return each.name == name; });
    static constexpr TypeRow none{noReaderType, "", "", false, false};
    return row == rows.end() ? none : *row;
}

} // namespace

FormatFactory::FormatFactory(const TypeRow& row) {
    type = row.type;
    name = row.name;
    pattern = row.pattern;
    flags = row.listed ? factoryEnabled | factoryListed : factoryEnabled;
}

FormatFactory::FormatFactory(const char* rowName) : FormatFactory(rowNamed(rowName)) {}

IDataReader* FormatFactory::create(const char*) { return newReader(type); }

} // namespace kvsig
