#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace kvsig {

/// UTF-16, little-endian, as UTF-8, up to the first NUL. Half a pair of surrogates becomes U+FFFD,
/// an odd last byte is left out.
[[nodiscard]] std::string textOfUtf16(std::span<const std::byte> bytes);

} // namespace kvsig
