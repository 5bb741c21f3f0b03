#include "kvsig/readers/FlatDecode.h"

#include <bit>

namespace kvsig {
namespace {

template <typename Stored, std::endian Order>
Stored load(const std::byte* from) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < sizeof(Stored); ++i) {
        const std::size_t place = Order == std::endian::little ? i : sizeof(Stored) - 1 - i;
        bits |= std::to_integer<std::uint32_t>(from[i]) << (8 * place);
    }
    return static_cast<Stored>(bits);
}

// Differences are taken modulo 2^32: they fit, so the low bits are the whole of them.
template <typename Stored, std::endian Order, typename Out>
void decodeAs(const FlatSpan& span, Out* out, std::int64_t outStep) {
    const auto zero = static_cast<std::uint32_t>(span.zero);
    const std::byte* from = span.from;
    for (std::int64_t i = 0; i < span.count; ++i) {
        const auto stored = static_cast<std::uint32_t>(load<Stored, Order>(from + i * span.step));
        out[i * outStep] = static_cast<Out>(stored - zero);
    }
}

template <typename Signed, typename Unsigned, typename Out>
void decodeWidth(const FlatSpan& span, Out* out, std::int64_t outStep) {
    constexpr auto big = std::endian::big, little = std::endian::little;
    if (span.integer.isSigned && span.integer.bigEndian)
        decodeAs<Signed, big>(span, out, outStep);
    else if (span.integer.isSigned)
        decodeAs<Signed, little>(span, out, outStep);
    else if (span.integer.bigEndian)
        decodeAs<Unsigned, big>(span, out, outStep);
    else
        decodeAs<Unsigned, little>(span, out, outStep);
}

template <typename Out>
void decodeAny(const FlatSpan& span, Out* out, std::int64_t outStep) {
    if (span.integer.bytes == 1)
        decodeWidth<std::int8_t, std::uint8_t>(span, out, outStep);
    else if (span.integer.bytes == 2)
        decodeWidth<std::int16_t, std::uint16_t>(span, out, outStep);
    else
        decodeWidth<std::int32_t, std::uint32_t>(span, out, outStep);
}

} // namespace

std::int64_t FlatInteger::least() const {
    return isSigned ? -(std::int64_t{1} << (8 * bytes - 1)) : 0;
}

std::int64_t FlatInteger::greatest() const {
    return (std::int64_t{1} << (8 * bytes - (isSigned ? 1 : 0))) - 1;
}

void decode(const FlatSpan& span, std::int16_t* out, std::int64_t outStep) {
    decodeAny(span, out, outStep);
}

void decode(const FlatSpan& span, std::int32_t* out, std::int64_t outStep) {
    decodeAny(span, out, outStep);
}

} // namespace kvsig
