#pragma once

#include <string_view>

namespace kvsig {

/// The templates of share/KVMontageTemplates.xml, for programs that lie apart from what is
/// installed with the library.
[[nodiscard]] std::string_view shippedMontages();

} // namespace kvsig
