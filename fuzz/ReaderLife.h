#pragma once

#include "compliance/ReaderRow.h"

#include <string_view>

namespace kvsig::fuzz {

/// The whole public life of a reader over one input: detected, allocated, opened, asked everything
/// inside and outside its ranges, read at its ends, across its pages and backwards, its attribute
/// file written and read back, closed and opened again. What a host may rely on is checked: a
/// recording that opens can be read, gives the same samples whichever way they are asked for, and
/// one that does not open says why.
void readerLife(const test::ReaderRow& row, std::string_view fileName, std::string_view input);

} // namespace kvsig::fuzz
